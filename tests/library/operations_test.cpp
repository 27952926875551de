#include "operations.h"

#include "api/internal.h"
#include "api/object_table.h"
#include "calls.h"
#include "open_printer.h"

namespace {

const Bytes permissionRequest{2, 0x80};

bool startsWith(const Bytes& piece, const Bytes& start) {
    return std::equal(start.begin(), start.end(), piece.begin());
}

struct Operations : OpenPrinter {
    std::vector<Bytes> piecesOf(auto call, uint16_t expectedCode, size_t count = 0) {
        bus[0].forgetPieces();
        EXPECT_EQ(codeOf(call), expectedCode);
        return bus[0].pieces(count);
    }
    ~Operations() override { EXPECT_EQ(codeElsewhere(zprusb_status), 0) << "the printer is still reserved"; }
};

/// An answer whose header announces another length than it has.
Bytes lyingAnswer(const Bytes& payload, uint16_t announced) {
    Bytes answer = normalAnswer(payload);
    answer[8] = static_cast<uint8_t>(announced);
    answer[9] = static_cast<uint8_t>(announced >> 8);
    return answer;
}

/// The bytes that a call left in a buffer of 600, which was full of 0xCC.
Bytes bytesLeftBy(auto call) {
    Bytes buffer(600, 0xCC);
    call(buffer.data());
    return buffer;
}

Bytes followedBy(Bytes bytes, size_t size, uint8_t filler) {
    bytes.resize(size, filler);
    return bytes;
}

}  // namespace

TEST_F(Operations, sendTheirRequestsInOrder) {
    for (const Operation& operation : operations) {
        SCOPED_TRACE(operation.name);
        EXPECT_EQ(piecesOf(operation.call, 0, operation.pieces.size()), operation.pieces);
    }
}

TEST_F(Operations, endWithTheirCodeAtTheFirstExchangeThatIsRefused) {
    for (const Operation& operation : operations) {
        for (size_t refused = 0; refused < operation.pieces.size(); ++refused) {
            const Bytes& request = operation.pieces[refused];
            if (!isRequest(request)) continue;
            SCOPED_TRACE(testing::Message() << operation.name << ", piece " << refused);
            const bool ignored = startsWith(request, permissionRequest);  // the write goes out all the same
            const unsigned refusals = ignored ? 1 : operation.attempts;
            for (unsigned refusal = 0; refusal < refusals; ++refusal)
                bus[0].answerOnce({request[0], request[1]}, errorAnswer(1));
            const uint16_t code = ignored ? uint16_t{0} : operation.refusedCode;
            const size_t sent = ignored ? operation.pieces.size() : (refused + 1) * refusals;
            EXPECT_EQ(piecesOf(operation.call, code).size(), sent);
            EXPECT_EQ(operation.call(nullptr), 1u);
            EXPECT_EQ(codeOf(zprusb_status), 0);  // then all that was written has arrived
        }
    }
}

TEST_F(Operations, sendNothingForBadArguments) {
    static const Bytes bytes = countingBytes(300, 1);
    static uint32_t length;
    static uint8_t out[600], count;
    const auto set = [](uint16_t tag, const uint8_t* data, const uint32_t* size) {
        return [=](uint16_t* code) { return zprusb_setPrinterInfo(tag, data, size, code); };
    };
    const auto refuses = [&](auto call) { EXPECT_TRUE(piecesOf(call, ZPRUSB_BAD_ARGUMENT).empty()); };
    for (const int tag : {0, 3, 19, 27, 50, 255, 276, 0xFFFF})
        refuses(set(static_cast<uint16_t>(tag), bytes.data(), &length));
    for (uint16_t tag = 20; tag <= 26; ++tag) refuses(set(tag, nullptr, &length));
    for (const uint16_t tag : {uint16_t{25}, uint16_t{26}}) refuses(set(tag, bytes.data(), nullptr));
    for (const uint8_t button : Bytes{0, 3, 255}) refuses(set(23, &button, nullptr));
    for (const auto& [tag, size] :
         {std::pair(25, 0), {25, 24}, {25, 261}, {26, 0}, {26, 8}, {26, 24}, {26, 256}}) {
        length = static_cast<uint32_t>(size);
        refuses(set(static_cast<uint16_t>(tag), bytes.data(), &length));
    }
    for (const uint8_t counter : Bytes{0, 7, 255})
        refuses([=](uint16_t* code) { return zprusb_resetCounter(counter, code); });
    for (const uint8_t mode : Bytes{3, 255})
        refuses([=](uint16_t* code) { return zprusb_setToneCurve(mode, bytes.data(), code); });
    refuses([](uint16_t* c) { return zprusb_setToneCurve(1, nullptr, c); });
    for (const uint8_t size : Bytes{0, 248, 255})
        refuses([=](uint16_t* c) { return zprusb_universalCommand(bytes.data(), size, out, &count, c); });
    refuses([](uint16_t* c) { return zprusb_universalCommand(nullptr, 1, out, &count, c); });
    refuses([](uint16_t* c) { return zprusb_universalCommand(bytes.data(), 1, nullptr, &count, c); });
    refuses([](uint16_t* c) { return zprusb_universalCommand(bytes.data(), 1, out, nullptr, c); });
    for (const uint8_t size : Bytes{0, 24, 255})
        refuses([=](uint16_t* c) { return zprusb_cmdSetPrinterUniqueString(bytes.data(), size, c); });
    refuses([](uint16_t* c) { return zprusb_cmdSetPrinterUniqueString(nullptr, 1, c); });
    refuses([](uint16_t* c) { return zprusb_cmdSetEepromMaintenance(0, 1, nullptr, c); });
    refuses([](uint16_t* c) { return zprusb_setEepromMaintenance(0, nullptr, 1, c); });
    refuses([](uint16_t* c) { return zprusb_getEepromMaintenance(0, nullptr, 1, c); });
    refuses([](uint16_t* c) { return zprusb_getMaintenanceData(0, 0, nullptr, c); });
    refuses([](uint16_t* c) { return zprusb_selfDiagnosisData(1, 0, 0, nullptr, c); });
    refuses([](uint16_t* c) { return zprusb_getSelfDiagnosisResults(out, nullptr, c); });
    refuses([](uint16_t* c) { return zprusb_writeRaw(nullptr, &length, c); });
    refuses([](uint16_t* c) { return zprusb_writeRaw(bytes.data(), nullptr, c); });
    refuses([](uint16_t* c) { return zprusb_transferRaw(nullptr, 1, out, &length, c); });
    refuses([](uint16_t* c) { return zprusb_transferRaw(bytes.data(), 1, nullptr, &length, c); });
    refuses([](uint16_t* c) { return zprusb_transferRaw(bytes.data(), 1, out, nullptr, c); });
    refuses([](uint16_t* c) { return zprusb_readRaw(nullptr, c); });
}

TEST_F(Operations, setTheOptionsThatTheNextPageCarries) {
    EXPECT_EQ(codeOf(zprusb_checkMediaInfo, uint8_t{0xF1}, 15240u, 10160u), 0);
    const uint8_t values[] = {0x2C, 0x01};
    for (const uint16_t tag : {uint16_t{20}, uint16_t{21}, uint16_t{22}})
        EXPECT_EQ(codeOf(zprusb_setPrinterInfo, tag, values, static_cast<const uint32_t*>(nullptr)), 0);
    const auto pieces = piecesOf([](uint16_t* code) { return zprusb_startpage(nullptr, code); }, 0);
    EXPECT_EQ(Bytes(pieces.back().end() - 7, pieces.back().end()), (Bytes{0xF1, 0x2C, 0, 0x2C, 1, 0x2C, 1}));
    EXPECT_EQ(codeOf(zprusb_endpage), 0);
}

TEST_F(Operations, storeAUniqueStringOfTheLowByteOfItsLength) {
    const uint32_t length = 256 + 8;
    const Bytes text = countingBytes(length, 'a');
    const auto pieces =
        piecesOf([&](uint16_t* code) { return zprusb_setPrinterInfo(26, text.data(), &length, code); }, 0);
    EXPECT_EQ(pieces, (std::vector<Bytes>{{7, 0xC0, 9, 0, 8, 'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h'}}));
}

TEST_F(Operations, resetEachCounterAtItsAddress) {
    const uint8_t addresses[] = {0x64, 0xA4, 0x68, 0x6C, 0xF8, 0xFC};
    for (uint8_t counter = 1; counter <= 6; ++counter) {
        const auto pieces = piecesOf([&](uint16_t* code) { return zprusb_resetCounter(counter, code); }, 0);
        const uint8_t address = addresses[counter - 1];
        EXPECT_EQ(pieces,
                  (std::vector<Bytes>{{2, 0x80, 2, 0, address, 4}, {6, 0xC0, 6, 0, address, 4, 0, 0, 0, 0}}));
    }
}

TEST_F(Operations, controlAPrinterThatReportsAnErrorButNoneThatIsOutOfReach) {
    const std::pair<uint8_t, uint16_t> errors[] = {{1, 2600}, {5, 2600}, {0x31, 0}, {0x11, 0}, {0x99, 0}};
    for (const auto& [error, code] : errors) {
        bus[0].answer(getStatus, errorAnswer(error));
        for (const auto& call : {zprusb_blinkLED, zprusb_resetPrinter})
            EXPECT_EQ(piecesOf(call, code).size(), code == 0 ? 2u : 1u) << int{error};
    }
    bus[0].answer(getStatus, normalAnswer(statusPayload()));
}

TEST_F(Operations, startSelfDiagnosesWithinTheirRanges) {
    struct {
        unsigned least1, most1, least2, most2;
    } const ranges[] = {{1, 0, 0, 0}, {0, 255, 0, 255}, {1, 7, 0, 255},  {1, 2, 1, 5}, {1, 3, 1, 3},
                        {1, 3, 1, 2}, {1, 7, 0, 255},   {1, 13, 0, 255}, {1, 0, 0, 0}, {1, 0, 0, 0}};
    uint8_t kind = 0;
    for (const auto& range : ranges) {
        for (const unsigned p1 : {0, 1, 2, 3, 4, 7, 8, 13, 14, 255}) {
            for (const unsigned p2 : {0, 1, 2, 3, 4, 5, 6, 255}) {
                SCOPED_TRACE(testing::Message() << int{kind} << " " << p1 << " " << p2);
                const bool possible =
                    range.least1 <= p1 && p1 <= range.most1 && range.least2 <= p2 && p2 <= range.most2;
                const auto first = static_cast<uint8_t>(p1), second = static_cast<uint8_t>(p2);
                const auto pieces =
                    piecesOf([&](uint16_t* code) { return zprusb_selfDiagnosis(kind, first, second, code); },
                             possible ? 0 : 1006);
                const Bytes sent =
                    kind == 1 ? Bytes{1, 0xC0, 3, 0, 1, 0, 0} : Bytes{1, 0xC0, 3, 0, kind, first, second};
                ASSERT_EQ(pieces, possible ? std::vector<Bytes>{sent} : std::vector<Bytes>{});
            }
        }
        ++kind;
    }
}

TEST_F(Operations, handOutSelfDiagnosisResultsOf40BytesAtMost) {
    constexpr CommandId getResults{2, 0xC0};
    uint32_t length = 7;
    uint16_t code = 1;
    EXPECT_EQ(zprusb_getSelfDiagnosisResults(nullptr, &length, &code), 0u);
    EXPECT_EQ(std::pair(length, code), std::pair(40u, uint16_t{0}));
    EXPECT_TRUE(bus[0].pieces().empty());
    struct {
        Bytes answer;
        uint32_t room;
        uint32_t success;
        uint16_t code;
        uint32_t length;
        Bytes bytes;
    } const cases[] = {
        {normalAnswer(countingBytes(40, 1)), 40, 1, 0, 40, countingBytes(40, 1)},
        {normalAnswer(countingBytes(40, 1)), 3, 1, 0, 3, countingBytes(3, 1)},
        {normalAnswer(countingBytes(100, 1)), 600, 1, 0, 40, countingBytes(40, 1)},
        {lyingAnswer(countingBytes(5, 1), 2000), 600, 1, 0, 40, followedBy(countingBytes(5, 1), 40, 0)},
        {errorAnswer(0x36), 600, 0, 8000, 40, Bytes(40)},
        {errorAnswer(0x36), 2, 0, 8000, 2, Bytes(2)},
        {errorAnswer(0x35), 600, 0, 2105, 600, {}},
        {errorAnswer(2), 30, 0, 2602, 30, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.answer));
        bus[0].answer(getResults, c.answer);
        length = c.room;
        const Bytes left = bytesLeftBy(
            [&](uint8_t* out) { EXPECT_EQ(zprusb_getSelfDiagnosisResults(out, &length, &code), c.success); });
        EXPECT_EQ(std::pair(length, code), std::pair(c.length, c.code));
        EXPECT_EQ(left, followedBy(c.bytes, 600, 0xCC));
    }
}

TEST_F(Operations, handOutWhatArrivedAndNeverMoreThanFits) {
    constexpr CommandId selfDiagnosis{1, 0xC0}, universal{0xFF, 0xC0};
    for (const unsigned announced : {0, 4, 38, 40, 260, 290, 600, 0xFFFF}) {
        for (const size_t arrived : {size_t{0}, size_t{4}, size_t{290}}) {
            SCOPED_TRACE(testing::Message() << announced << " announced, " << arrived << " arrived");
            const Bytes payload = countingBytes(arrived, 1);
            const Bytes taken = countingBytes(std::min<size_t>(announced, arrived), 1);
            for (const CommandId& command : {getEeprom, getMaintenanceData, selfDiagnosis, universal})
                bus[0].answer(command, lyingAnswer(payload, static_cast<uint16_t>(announced)));
            const uint16_t code = announced == arrived ? 0 : 2600;
            const auto expect = [&](const Bytes& expected, auto call) {
                EXPECT_EQ(bytesLeftBy([&](uint8_t* out) {
                              uint16_t got = 1;
                              EXPECT_EQ(call(out, &got), 1u);
                              EXPECT_EQ(got, code);
                          }),
                          followedBy(expected, 600, 0xCC));
            };
            uint8_t count = 0;
            expect(followedBy(taken, 260, 0),
                   [](uint8_t* out, uint16_t* c) { return zprusb_getEepromMaintenance(0, out, 4, c); });
            expect(followedBy(taken, 38, 0),
                   [](uint8_t* out, uint16_t* c) { return zprusb_getMaintenanceData(0, 0, out, c); });
            expect(taken, [](uint8_t* out, uint16_t* c) { return zprusb_selfDiagnosisData(1, 0, 0, out, c); });
            expect(taken,
                   [&](uint8_t* out, uint16_t* c) { return zprusb_universalCommand(out, 1, out, &count, c); });
            EXPECT_EQ(count, announced & 0xFF);
        }
    }
}

TEST_F(Operations, transferRawBytesBothWays) {
    const Bytes request{0x77, 0x77, 0, 0}, answer = countingBytes(400, 9);
    bus[0].answer({0x77, 0x77}, answer);
    uint32_t count = 0;
    const Bytes left = bytesLeftBy(
        [&](uint8_t* out) { EXPECT_EQ(zprusb_transferRaw(request.data(), 4, out, &count, nullptr), 1u); });
    EXPECT_EQ(count, 400u);
    EXPECT_EQ(left, followedBy(answer, 600, 0xCC));
}

TEST_F(Operations, joinRawPiecesUntilOneEndsWithZero) {
    struct {
        std::vector<Bytes> pieces;
        uint32_t success;
        uint16_t code;
        Bytes bytes;
    } const cases[] = {
        {{{4, 'a', 'b', 'c', 'd'}, {2, 'e', 0}}, 1, 0, {'a', 'b', 'c', 'd', 'e', 0}},
        {{{9, 'a'}, {0}, {1, 0}}, 1, 2600, {'a', 0}},
        {{{1, 'a'}, {1, 'b'}}, 0, 2600, {'a', 'b'}},  // then the pipe ends
        {{}, 0, 2600, {}},
        {{Bytes(200, 199), Bytes(62, 61), {1, 0}}, 1, 2600, followedBy(Bytes(199, 199), 260, 61)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.pieces));
        const FakePipe pipe = makeRequestPipe();  // used the other way round: it keeps the pieces apart
        for (const Bytes& piece : c.pieces) {
            uint32_t written = 0;
            ASSERT_TRUE(platform::writePipe(pipe.libraryEnd, piece.data(), static_cast<uint32_t>(piece.size()),
                                            written));
        }
        closeEnd(pipe.libraryEnd);
        const api::ObjectUse object(api::findThreadSlot());
        const auto ownPipe = (*object).reader.pipe.exchange(pipe.testEnd);
        uint16_t code = 1;
        const Bytes left = bytesLeftBy([&](uint8_t* out) { EXPECT_EQ(zprusb_readRaw(out, &code), c.success); });
        (*object).reader.pipe = ownPipe;
        closeEnd(pipe.testEnd);
        EXPECT_EQ(code, c.code);
        EXPECT_EQ(left, followedBy(c.bytes, 600, 0xCC));
    }
}
