// Every exchange of every operation fails in every way, one after another.
#include <algorithm>
#include <iostream>
#include <vector>

#include "api/internal.h"
#include "campaign.h"
#include "operations.h"

namespace {

using Call = uint32_t (*)(uint16_t* code);

/// Those that hand out information give no code of their own.
template <uint16_t tag, uint32_t size>
uint32_t getInfo(uint16_t* code) {
    uint8_t record[size];
    uint32_t length = size;
    const uint32_t success = zprusb_getPrinterInfo(tag, record, &length);
    *code = success != 0 ? ZPRUSB_SUCCESS : ZPRUSB_COMMUNICATION;
    return success;
}

struct Walked {
    std::string name;
    Call call;
};

uint32_t checkMedia(uint16_t* code) {
    return zprusb_checkMediaInfo(0xF1, 85, 85, code);
}

uint32_t printAfterCheck(uint16_t* code) {
    static const uint8_t pixels[pageSize] = {};
    if (zprusb_startpage(nullptr, code) == 0) return 0;
    const uint32_t written = zprusb_write(pixels, &pageSize, code);
    return zprusb_endpage(written != 0 ? code : nullptr) & written;
}

#define GET_INFO(tag, name, size, content) {"information " #name, getInfo<tag, size>},
const Walked others[] = {ZPRUSB_INFO_TAGS(GET_INFO){"media check", checkMedia}, {"page", printAfterCheck}};

/// Those that don't end well with a simulated printer, or leave an answer behind.
constexpr const char* left[] = {"zprusb_checkMediaInfo", "zprusb_write", "zprusb_selfDiagnosisData"};

/// Those whose answer is awaited without a limit.
constexpr const char* unlimited[] = {"zprusb_universalCommand", "zprusb_transferRaw", "zprusb_cmd"};

/// Whether a name starts with one of these.
bool isOneOf(const auto& starts, const std::string& name) {
    return std::ranges::any_of(starts, [&](const char* start) { return name.starts_with(start); });
}

std::vector<Walked> walkedOperations() {
    std::vector<Walked> walked(std::begin(others), std::end(others));
    for (const Operation& operation : operations) {
        if (!isOneOf(left, operation.name)) walked.push_back({operation.name, operation.call});
    }
    return walked;
}

struct Exchange {
    const Walked& operation;
    unsigned number;  // from 1 to `count`
    unsigned count;

    /// An operation that misses the acknowledgement asks anew, and the printer takes that for data.
    bool makesThePrinterWaitForData() const {
        return number == count &&
               (operation.name == "page" || operation.name.starts_with("zprusb_setToneCurve(2"));
    }

    bool isReadWithoutLimit() const { return isOneOf(unlimited, operation.name); }

    /// Lets it fail in each attempt at the operation.
    /// @return the operation's code.
    uint16_t spoil(Json fault) const {
        constexpr unsigned mostAttempts = 4;
        fault["command"] = "any";
        for (unsigned attempt = 1; attempt <= mostAttempts; ++attempt) {
            fault["occurrence"] = attempt * number;
            EXPECT_EQ(zprusbsim_addFault(fault.dump().c_str(), nullptr, 0), 1u) << fault;
        }
        uint16_t code = 0xABCD;
        const uint32_t success = operation.call(&code);
        EXPECT_TRUE(isDocumented(code) && (success == 1 || code != ZPRUSB_SUCCESS))
            << code << " after " << fault;
        zprusbsim_clearFaults(0);
        noteCode(code);
        return code;
    }
};

struct Exchanges : Campaign {
    Exchanges() { open(); }

    static void open() {
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeOf(checkMedia), ZPRUSB_SUCCESS);
    }

    /// How many requests an operation sends when all goes well.
    static unsigned countRequests(Call call) {
        while (zprusbsim_takeRequest(0, nullptr, 0) != 0) continue;
        EXPECT_EQ(codeOf(call), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);  // then all others have arrived
        unsigned count = 0;
        while (zprusbsim_takeRequest(0, nullptr, 0) != 0) ++count;
        return count - 1;
    }

    /// Calls `visit` for each exchange of each operation, or each so-many-th one.
    static void forEachExchange(unsigned stride, auto visit) {
        unsigned visited = 0;
        for (const Walked& operation : walkedOperations()) {
            const unsigned count = countRequests(operation.call);
            for (unsigned number = 1; number <= count; ++number) {
                if (visited++ % stride != 0) continue;
                SCOPED_TRACE(testing::Message()
                             << operation.name << ", exchange " << number << " of " << count);
                visit(Exchange{operation, number, count});
                expectUsable();
                if (HasFailure()) return;
            }
        }
        std::cout << visited / stride << " exchanges\n";
    }
};

}  // namespace

TEST_F(Exchanges, thatAreAnsweredTooShortOrTooLongGive2600OrAreTakenAsTheyAre) {
    constexpr unsigned longestAnswer = 80;
    // Of a table that was cut, the size that is wanted may be missing.
    const auto expect = [](uint16_t code, unsigned bytes) {
        EXPECT_TRUE(code == ZPRUSB_SUCCESS || code == ZPRUSB_COMMUNICATION || code == ZPRUSB_BAD_ARGUMENT)
            << code << ", cut to or longer by " << bytes;
    };
    forEachExchange(rounds(3, 1), [&](const Exchange& exchange) {
        if (exchange.makesThePrinterWaitForData()) return;
        for (unsigned bytes = 1; bytes <= longestAnswer; ++bytes)
            expect(exchange.spoil({{"action", "short"}, {"bytes", bytes}}), bytes);
        expect(exchange.spoil({{"action", "long"}, {"bytes", 1}}), 1);
        EXPECT_EQ(codeOf(exchange.operation.call), ZPRUSB_SUCCESS);
    });
}

TEST_F(Exchanges, thatAreRefusedOrReportAnythingGiveADocumentedCode) {
    forEachExchange(rounds(3, 1), [](const Exchange& exchange) {
        for (const unsigned number : {0, 1, 5, 6, 0x11, 0x21, 0x31, 0x39, 0x61, 0x6D, 0xFF}) {
            const unsigned group = number % 8, detail = number % 17;
            exchange.spoil({{"action", "error"}, {"number", number}, {"group", group}, {"detail", detail}});
            if (exchange.makesThePrinterWaitForData()) continue;
            exchange.spoil({{"action", "status"}, {"number", number}, {"group", group}, {"detail", detail}});
            exchange.spoil({{"action", "kind"}, {"kind", number}});
        }
        EXPECT_EQ(codeOf(exchange.operation.call), ZPRUSB_SUCCESS);
    });
}

TEST_F(Exchanges, onPipesThatEndGive2600UntilThePrinterIsOpenedAnew) {
    forEachExchange(rounds(6, 1), [](const Exchange& exchange) {
        // A direct read takes the end of a pipe for a read of nothing where the system does.
        const uint16_t code = exchange.spoil({{"action", "closePipe"}});
        EXPECT_TRUE(code == ZPRUSB_COMMUNICATION || (code == ZPRUSB_SUCCESS && exchange.isReadWithoutLimit()))
            << code;
        EXPECT_EQ(codeOf(exchange.operation.call), ZPRUSB_COMMUNICATION);
        zprusb_close();
        open();
    });
}

TEST_F(Exchanges, thatAreNeverAnsweredEndAfterTheirTimeOut) {
    forEachExchange(rounds(100, 1), [&](const Exchange& exchange) {
        if (exchange.isReadWithoutLimit() || exchange.makesThePrinterWaitForData()) return;
        addFault({{"command", "any"}, {"occurrence", exchange.number}, {"action", "never"}});
        uint16_t code = 0xABCD;
        exchange.operation.call(&code);
        EXPECT_TRUE(code == ZPRUSB_SUCCESS || code == ZPRUSB_COMMUNICATION) << code;
        zprusbsim_clearFaults(0);
    });
}
