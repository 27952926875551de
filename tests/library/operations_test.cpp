#include "operations.h"

#include "api/object_table.h"
#include "calls.h"
#include "open_printer.h"

namespace {

struct Operations : OpenPrinter {
    /// What a call sends that has to end with the expected code.
    std::vector<Bytes> piecesOf(uint16_t expectedCode, auto entry, auto... arguments) {
        bus[0].forgetPieces();
        EXPECT_EQ(codeOf(entry, arguments...), expectedCode);
        EXPECT_EQ(codeOf(zprusb_cmdGetStatus), 0);  // then all that was sent before has arrived
        std::vector<Bytes> pieces = bus[0].pieces();
        pieces.pop_back();
        return pieces;
    }
    ~Operations() override { EXPECT_EQ(codeElsewhere(zprusb_status), 0) << "the printer is still reserved"; }
};

/// An answer whose header announces another length than it has.
Bytes lyingAnswer(const Bytes& payload, unsigned announced) {
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
    for (const Operation& operation : operations)
        EXPECT_EQ(piecesOf(0, operation.call), operation.pieces) << operation.name;
}

TEST_F(Operations, endWithTheirCodeAtTheFirstExchangeThatIsRefused) {
    for (const Operation& operation : operations) {
        for (size_t refused = 0; refused < operation.pieces.size(); ++refused) {
            const Bytes& request = operation.pieces[refused];
            if (!isRequest(request)) continue;
            SCOPED_TRACE(testing::Message() << operation.name << ", piece " << refused);
            const CommandId command{request[0], request[1]};
            const bool ignored = command == maintenancePermission;  // the write goes out all the same
            const unsigned refusals = ignored ? 1 : operation.attempts;
            for (unsigned refusal = 0; refusal < refusals; ++refusal)
                bus[0].answerOnce(command, errorAnswer(1));
            const uint16_t code = ignored ? uint16_t{0} : operation.refusedCode;
            const size_t sent = ignored ? operation.pieces.size() : (refused + 1) * refusals;
            EXPECT_EQ(piecesOf(code, operation.call).size(), sent);
            EXPECT_EQ(operation.call(nullptr), 1u);
            EXPECT_EQ(codeOf(zprusb_cmdGetStatus), 0);
        }
    }
}

TEST_F(Operations, sendNothingForBadArguments) {
    static const Bytes data(300, 1);
    static const uint8_t* const bytes = data.data();
    static uint32_t length = 1;
    static uint8_t out[600], count;
    const Operation withoutABuffer[] = {
        {CALL(zprusb_setPrinterInfo(25, bytes, nullptr, code))},
        {CALL(zprusb_setPrinterInfo(26, bytes, nullptr, code))},
        {CALL(zprusb_setToneCurve(1, nullptr, code))},
        {CALL(zprusb_universalCommand(nullptr, 1, out, &count, code))},
        {CALL(zprusb_universalCommand(bytes, 1, nullptr, &count, code))},
        {CALL(zprusb_universalCommand(bytes, 1, out, nullptr, code))},
        {CALL(zprusb_cmdSetPrinterUniqueString(nullptr, 1, code))},
        {CALL(zprusb_cmdSetEepromMaintenance(0, 1, nullptr, code))},
        {CALL(zprusb_setEepromMaintenance(0, nullptr, 1, code))},
        {CALL(zprusb_getEepromMaintenance(0, nullptr, 1, code))},
        {CALL(zprusb_getMaintenanceData(0, 0, nullptr, code))},
        {CALL(zprusb_selfDiagnosisData(1, 0, 0, nullptr, code))},
        {CALL(zprusb_getSelfDiagnosisResults(out, nullptr, code))},
        {CALL(zprusb_write(nullptr, &length, code))},
        {CALL(zprusb_write(bytes, nullptr, code))},
        {CALL(zprusb_writeRaw(nullptr, &length, code))},
        {CALL(zprusb_writeRaw(bytes, nullptr, code))},
        {CALL(zprusb_transferRaw(nullptr, 1, out, &length, code))},
        {CALL(zprusb_transferRaw(bytes, 1, nullptr, &length, code))},
        {CALL(zprusb_transferRaw(bytes, 1, out, nullptr, code))},
        {CALL(zprusb_readRaw(nullptr, code))},
    };
    for (const Operation& operation : withoutABuffer)
        EXPECT_EQ(codeOf(operation.call), ZPRUSB_BAD_ARGUMENT) << operation.name;
    const auto set = [](int tag, const uint8_t* value, uint32_t size) {
        return codeOf(zprusb_setPrinterInfo, static_cast<uint16_t>(tag), value, &size);
    };
    for (const int tag : {0, 3, 19, 27, 50, 255, 276, 0xFFFF}) EXPECT_EQ(set(tag, bytes, 1), 1006) << tag;
    for (int tag = 20; tag <= 26; ++tag) EXPECT_EQ(set(tag, nullptr, 1), 1006) << tag;
    for (const uint8_t button : Bytes{0, 3, 255}) EXPECT_EQ(set(23, &button, 0), 1006) << int{button};
    for (const uint32_t size : {0, 24, 261}) EXPECT_EQ(set(25, bytes, size), 1006) << size;
    for (const uint32_t size : {0, 8, 24, 256}) EXPECT_EQ(set(26, bytes, size), 1006) << size;
    for (const uint8_t counter : Bytes{0, 7, 255}) EXPECT_EQ(codeOf(zprusb_resetCounter, counter), 1006);
    for (const uint8_t mode : Bytes{3, 255}) EXPECT_EQ(codeOf(zprusb_setToneCurve, mode, bytes), 1006);
    EXPECT_TRUE(bus[0].pieces().empty());
}

TEST_F(Operations, carryTheCallersBytesOrRefuseTheirCount) {
    uint8_t out[512], outCount;
    for (unsigned count = 0; count <= 255; ++count) {
        const auto n = static_cast<uint8_t>(count);
        const Bytes data = countingBytes(n, 0x31);
        const auto expect = [&](bool accepted, Bytes sent, auto entry, auto... arguments) {
            sent.insert(sent.end(), data.begin(), data.end());
            ASSERT_EQ(piecesOf(accepted ? 0 : 1006, entry, arguments...), std::vector<Bytes>(accepted, sent))
                << count;
        };
        const auto plus1 = static_cast<uint8_t>(n + 1), plus2 = static_cast<uint8_t>(n + 2);
        expect(true, {6, 0xC0, plus2, n > 253, 0x64, n}, zprusb_cmdSetEepromMaintenance, uint8_t{0x64}, n,
               data.data());
        expect(1 <= n && n <= 23, {7, 0xC0, plus1, 0, n}, zprusb_cmdSetPrinterUniqueString, data.data(), n);
        expect(1 <= n && n <= 247, {0xFF, 0xC0, n, 0}, zprusb_universalCommand, data.data(), n, out, &outCount);
    }
}

TEST_F(Operations, setTheOptionsThatTheNextPageCarries) {
    const uint8_t values[] = {0x2C, 0x01};
    for (const uint16_t tag : {uint16_t{20}, uint16_t{21}, uint16_t{22}})
        EXPECT_EQ(codeOf(zprusb_setPrinterInfo, tag, values, nullptr), 0);
    const Bytes page = piecesOf(0, zprusb_startpage, nullptr).back();
    EXPECT_EQ(Bytes(page.end() - 6, page.end()), (Bytes{0x2C, 0, 0x2C, 1, 0x2C, 1}));
    EXPECT_EQ(codeOf(zprusb_endpage), 0);
}

TEST_F(Operations, storeAUniqueStringOfTheLowByteOfItsLength) {
    const uint32_t length = 256 + 2;
    EXPECT_EQ(piecesOf(0, zprusb_setPrinterInfo, uint16_t{26}, countingBytes(length, 'a').data(), &length),
              (std::vector<Bytes>{{7, 0xC0, 3, 0, 2, 'a', 'b'}}));
}

TEST_F(Operations, resetEachCounterAtItsAddress) {
    uint8_t counter = 0;
    for (const uint8_t address : Bytes{0x64, 0xA4, 0x68, 0x6C, 0xF8, 0xFC})
        EXPECT_EQ(piecesOf(0, zprusb_resetCounter, ++counter),
                  (std::vector<Bytes>{{2, 0x80, 2, 0, address, 4}, {6, 0xC0, 6, 0, address, 4, 0, 0, 0, 0}}));
}

TEST_F(Operations, controlAPrinterThatReportsAnErrorButNoneThatIsOutOfReach) {
    const std::pair<uint8_t, uint16_t> errors[] = {{1, 2600}, {5, 2600}, {0x31, 0}, {0x11, 0}, {0x99, 0}};
    for (const auto& [error, code] : errors) {
        bus[0].answer(getStatus, errorAnswer(error));
        for (const auto& call : {zprusb_blinkLED, zprusb_resetPrinter})
            EXPECT_EQ(piecesOf(code, call).size(), code == 0 ? 2u : 1u) << int{error};
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
        for (const uint8_t p1 : Bytes{0, 1, 2, 3, 4, 7, 8, 13, 14, 255}) {
            for (const uint8_t p2 : Bytes{0, 1, 2, 3, 4, 5, 6, 255}) {
                const bool possible =
                    range.least1 <= p1 && p1 <= range.most1 && range.least2 <= p2 && p2 <= range.most2;
                Bytes sent{1, 0xC0, 3, 0, kind, p1, p2};
                if (kind == 1) sent[5] = sent[6] = 0;
                ASSERT_EQ(piecesOf(possible ? 0 : 1006, zprusb_selfDiagnosis, kind, p1, p2),
                          std::vector<Bytes>(possible, sent))
                    << int{kind} << " " << int{p1} << " " << int{p2};
            }
        }
        ++kind;
    }
}

TEST_F(Operations, handOutSelfDiagnosisResultsOf40BytesAtMost) {
    uint32_t length = 7;
    uint16_t code = 1;
    EXPECT_EQ(zprusb_getSelfDiagnosisResults(nullptr, &length, &code), 0u);
    EXPECT_EQ(std::pair(length, code), std::pair(40u, uint16_t{0}));
    EXPECT_TRUE(bus[0].pieces().empty());
    struct {
        Bytes answer;
        uint32_t room;
        uint16_t code;
        uint32_t length;
        Bytes bytes;
    } const cases[] = {
        {normalAnswer(countingBytes(40, 1)), 3, 0, 3, countingBytes(3, 1)},
        {normalAnswer(countingBytes(100, 1)), 600, 0, 40, countingBytes(40, 1)},
        {lyingAnswer(countingBytes(5, 1), 2000), 600, 0, 40, followedBy(countingBytes(5, 1), 40, 0)},
        {errorAnswer(0x36), 600, 8000, 40, Bytes(40)},
        {errorAnswer(0x36), 2, 8000, 2, Bytes(2)},
        {errorAnswer(0x35), 600, 2105, 600, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.answer));
        bus[0].answer({2, 0xC0}, c.answer);
        length = c.room;
        const Bytes left = bytesLeftBy(
            [&](uint8_t* out) { EXPECT_EQ(codeOf(zprusb_getSelfDiagnosisResults, out, &length), c.code); });
        EXPECT_EQ(length, c.length);
        EXPECT_EQ(left, followedBy(c.bytes, 600, 0xCC));
    }
}

TEST_F(Operations, handOutWhatArrivedAndNeverMoreThanFits) {
    constexpr CommandId selfDiagnosis{1, 0xC0}, universal{0xFF, 0xC0};
    for (const unsigned announced : {0, 4, 38, 40, 260, 290, 600, 0xFFFF}) {
        for (const size_t arrived : {size_t{0}, size_t{4}, size_t{290}}) {
            SCOPED_TRACE(testing::Message() << announced << " announced, " << arrived << " arrived");
            const Bytes answer = lyingAnswer(countingBytes(arrived, 1), announced);
            for (const CommandId& command : {getEeprom, getMaintenanceData, selfDiagnosis, universal})
                bus[0].answer(command, answer);
            const auto expect = [&](const Bytes& bytes, auto call) {
                uint16_t code = 1;
                EXPECT_EQ(bytesLeftBy([&](uint8_t* out) { EXPECT_EQ(call(out, &code), 1u); }),
                          followedBy(bytes, 600, 0xCC));
                EXPECT_EQ(code, announced == arrived ? 0 : 2600);
            };
            using Out = uint8_t*;
            using Code = uint16_t*;
            const Bytes taken = countingBytes(std::min<size_t>(announced, arrived), 1);
            uint8_t count = 0;
            expect(followedBy(taken, 260, 0),
                   [](Out out, Code code) { return zprusb_getEepromMaintenance(0, out, 4, code); });
            expect(followedBy(taken, 38, 0),
                   [](Out out, Code code) { return zprusb_getMaintenanceData(0, 0, out, code); });
            expect(taken, [](Out out, Code code) { return zprusb_selfDiagnosisData(1, 0, 0, out, code); });
            expect(taken,
                   [&](Out out, Code code) { return zprusb_universalCommand(out, 1, out, &count, code); });
            EXPECT_EQ(count, announced & 0xFF);
        }
    }
}

TEST_F(Operations, transferRawBytesBothWays) {
    const Bytes request{0x77, 0x77, 0, 0}, answer = countingBytes(400, 9);
    bus[0].answer({0x77, 0x77}, answer);
    uint32_t count = 0;
    EXPECT_EQ(bytesLeftBy([&](uint8_t* out) { codeOf(zprusb_transferRaw, request.data(), 4u, out, &count); }),
              followedBy(answer, 600, 0xCC));
    EXPECT_EQ(count, 400u);
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
        {{{1, 'a', 'b', 'c'}, {1, 0}}, 1, 2600, {'a', 'b', 'c', 0}},
        {{{1, 'a'}, {1, 'b'}}, 0, 2600, {'a', 'b'}},  // then the pipe ends
        {{}, 0, 2600, {}},
        {{Bytes(200, 199), Bytes(62, 61), {1, 0}}, 1, 2600, followedBy(Bytes(199, 199), 260, 61)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.pieces));
        test::Pipe pipe(true);
        for (const Bytes& piece : c.pieces) ASSERT_TRUE(pipe.send(piece));
        pipe.closeWriter();
        const api::ObjectUse object(api::findThreadSlot());
        const auto ownPipe = (*object).connection.reader.pipe.exchange(pipe.reader);
        uint16_t code = 1;
        const Bytes left = bytesLeftBy([&](uint8_t* out) { EXPECT_EQ(zprusb_readRaw(out, &code), c.success); });
        (*object).connection.reader.pipe = ownPipe;
        EXPECT_EQ(code, c.code);
        EXPECT_EQ(left, followedBy(c.bytes, 600, 0xCC));
    }
}
