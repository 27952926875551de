#include <chrono>

#include "host.h"

using namespace test;

namespace {

class Faults : public SimulatorTest {
protected:
    void add(Json fault) {
        if (!fault.contains("imageByte")) fault.emplace("command", "GetStatus");
        addFault(fault);
    }
};

TEST_F(Faults, ChangeOneAnswer) {
    const Host host;
    const Bytes good = host.ask(getStatus);
    const std::pair<Json, Bytes> cases[] = {
        {{{"action", "short"}, {"bytes", 7}}, Bytes(good.begin(), good.begin() + 7)},
        {{{"action", "short"}, {"bytes", 1000}}, good},
        {{{"action", "long"}, {"bytes", 5}}, concatenate(good, Bytes(5, 0))},
        {{{"action", "kind"}, {"kind", 9}}, changed(good, {{0, 9}})},
        {{{"action", "error"}, {"number", 0x11}, {"group", 6}, {"detail", 16}}, refusal(0x11, 6, 16)},
        {{{"action", "status"}, {"number", 0x11}, {"group", 5}, {"detail", 4}},
         changed(good, {{2, 5}, {3, 4}, {7, 0x11}})},
    };
    for (const auto& [fault, answer] : cases) {
        add(fault);
        EXPECT_EQ(host.ask(getStatus), answer) << fault;
        EXPECT_EQ(host.ask(getStatus), good) << fault;
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

TEST_F(Faults, DelaySwallowOrReplaceAnAnswer) {
    const Host host;
    add({{"action", "late"}, {"seconds", 0.25}});
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(host.ask(getStatus), success(Bytes(48)));
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
    add({{"action", "never"}});
    ASSERT_TRUE(host.send(getStatus));
    EXPECT_EQ(host.ask({0x04, 0x00, 0, 0}).size(), 71u) << "the first answer is that of the second request";
    add({{"action", "error"}, {"number", 0x31}, {"command", "Print"}});
    EXPECT_EQ(host.ask(printRequest(5)), refusal(0x31));
    EXPECT_EQ(host.ask(getStatus), success(Bytes(48))) << "the refused page's job number was not taken";
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

TEST_F(Faults, DelayOrStopAPage) {
    add({{"imageByte", 1000}, {"action", "late"}, {"seconds", 0.5}});
    add({{"imageByte", 0}, {"action", "never"}, {"occurrence", 2}});
    Host host;
    host.transfer(printRequest(1));
    ASSERT_EQ(zprusbsim_waitForPages(0, 1, patience), 1u);
    host.transfer(printRequest(2), Bytes(1000, 1));
    host.close();
    EXPECT_EQ(zprusbsim_waitForPages(0, 2, 0), 1u) << "the stopped page ends with the device";
    EXPECT_EQ(zprusbsim_printedPages(0), 1u) << "the delayed page is whole";
}

}  // namespace
