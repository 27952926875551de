#include <chrono>

#include "host.h"

using namespace test;

namespace {

using Clock = std::chrono::steady_clock;

constexpr uint32_t patience = 30000;  // ms
const Bytes getStatus{0x01, 0x00, 0, 0};
constexpr size_t statusSize = 58;

class Faults : public SimulatorTest {
protected:
    Faults() { configure({{"printers", {{{"media", smallMedia}}}}}); }

    void add(Json fault) {
        if (!fault.contains("imageByte")) fault["command"] = fault.value("command", "GetStatus");
        char error[ZPRUSBSIM_ERROR_SIZE] = "";
        ASSERT_EQ(zprusbsim_addFault(fault.dump().c_str(), error, sizeof error), 1u) << error;
    }
};

TEST_F(Faults, ChangeOneAnswer) {
    const Host host;
    const Bytes good = host.ask(getStatus);
    const auto changed = [&](std::initializer_list<std::pair<size_t, uint8_t>> bytes) {
        Bytes answer = good;
        for (const auto& [offset, value] : bytes) answer[offset] = value;
        return answer;
    };
    const struct {
        Json fault;
        Bytes answer;
    } cases[] = {
        {{{"action", "short"}, {"bytes", 7}}, Bytes(good.begin(), good.begin() + 7)},
        {{{"action", "short"}, {"bytes", 1000}}, good},
        {{{"action", "long"}, {"bytes", 5}}, concatenate(good, Bytes(5, 0))},
        {{{"action", "kind"}, {"kind", 9}}, changed({{0, 9}})},
        {{{"action", "error"}, {"number", 3}}, refusal(3)},
        {{{"action", "error"}, {"number", 0x11}, {"group", 6}, {"detail", 16}}, refusal(0x11, 6, 16)},
        {{{"action", "status"}, {"number", 0x62}}, changed({{7, 0x62}})},
        {{{"action", "status"}, {"number", 0x11}, {"group", 5}, {"detail", 4}},
         changed({{2, 5}, {3, 4}, {7, 0x11}})},
    };
    for (const auto& [fault, answer] : cases) {
        SCOPED_TRACE(fault.dump());
        add(fault);
        EXPECT_EQ(host.ask(getStatus), answer);
        EXPECT_EQ(host.ask(getStatus), good);
    }
}

TEST_F(Faults, WaitForTheirOccurrence) {
    const Host host;
    add({{"action", "kind"}, {"kind", 9}, {"occurrence", 3}});
    add({{"action", "kind"}, {"kind", 7}, {"occurrence", "every"}, {"command", "GetErrorLog"}});
    add({{"action", "kind"}, {"kind", 8}, {"occurrence", 7}, {"command", "any"}});
    for (const uint8_t kind : Bytes{1, 1, 9, 8, 1}) {
        EXPECT_EQ(host.ask(getStatus)[0], kind);
        EXPECT_EQ(host.ask({0x04, 0x00, 0, 0})[0], 7);
    }
    zprusbsim_clearFaults(0);
    EXPECT_EQ(host.ask({0x04, 0x00, 0, 0})[0], 1);
}

TEST_F(Faults, DelayOrSwallowAnAnswer) {
    const Host host;
    add({{"action", "late"}, {"seconds", 0.25}});
    const auto start = Clock::now();
    EXPECT_EQ(host.ask(getStatus).size(), statusSize);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(250));
    add({{"action", "never"}});
    ASSERT_TRUE(host.send(getStatus));
    EXPECT_EQ(host.ask({0x04, 0x00, 0, 0}).size(), 71u) << "the first answer is that of the second request";
}

TEST_F(Faults, ThatRefuseACommandKeepItFromHappening) {
    const Host host;
    add({{"action", "error"}, {"number", 0x31}, {"command", "Print"}});
    EXPECT_EQ(host.ask(printRequest(5)), refusal(0x31));
    EXPECT_EQ(host.ask(getStatus)[34], 0);
}

TEST_F(Faults, BreakTheLinkAtACommand) {
    const struct {
        Json fault;
        bool staysPresent, canBeOpened;
    } cases[] = {
        {{{"action", "closePipe"}}, true, true},
        {{{"action", "replug"}, {"seconds", 0}}, false, true},
        {{{"action", "replug"}, {"seconds", 3600}}, false, false},
        {{{"action", "unplug"}}, false, false},
    };
    for (const auto& [fault, staysPresent, canBeOpened] : cases) {
        SCOPED_TRACE(fault.dump());
        zprusbsim_plug(0);
        add(fault);
        Host host;
        EXPECT_TRUE(host.ask(getStatus).empty());
        EXPECT_FALSE(host.send(getStatus));
        EXPECT_EQ(host.isPresent(), staysPresent);
        host.close();
        EXPECT_EQ(Host().isPresent(), canBeOpened);
    }
}

TEST_F(Faults, BreakTheLinkWithinAPage) {
    for (const char* action : {"closePipe", "unplug"}) {
        SCOPED_TRACE(action);
        zprusbsim_plug(0);
        configure({{"printers", {{{"media", smallMedia}}}}});
        add({{"imageByte", 1000}, {"occurrence", 2}, {"action", action}});
        const Host host;
        ASSERT_EQ(host.ask(printRequest(1)), acknowledgement());
        ASSERT_TRUE(host.send(pattern(smallPageSize)));
        ASSERT_EQ(host.ask(printRequest(2)), acknowledgement());
        ASSERT_TRUE(host.send(Bytes(1000, 1)));
        ASSERT_EQ(zprusbsim_waitForPages(0, 2, patience), 1u);
        EXPECT_EQ(zprusbsim_printedPages(0), 1u);
        EXPECT_FALSE(host.send({1}));
    }
}

TEST_F(Faults, ThatStopImageDataEndWithTheDevice) {
    add({{"imageByte", 0}, {"action", "never"}});
    Host host;
    ASSERT_EQ(host.ask(printRequest(1)), acknowledgement());
    ASSERT_TRUE(host.send(Bytes(1000, 1)));
    host.close();
    EXPECT_EQ(zprusbsim_waitForPages(0, 1, 0), 1u);
    EXPECT_EQ(zprusbsim_printedPages(0), 0u);
}

TEST_F(Faults, ThatDelayImageDataLoseNone) {
    add({{"imageByte", 1000}, {"action", "late"}, {"seconds", 0.5}});
    const Host host;
    ASSERT_EQ(host.ask(printRequest(1)), acknowledgement());
    ASSERT_TRUE(host.send(pattern(smallPageSize)));
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);
    EXPECT_EQ(zprusbsim_printedPages(0), 1u);
}

}  // namespace
