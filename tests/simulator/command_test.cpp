#include "host.h"

using namespace test;

namespace {

class Commands : public SimulatorTest {};

Bytes padded(const std::string& text, size_t size) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(size, 0);
    return bytes;
}

Bytes updateRequest(uint8_t target, uint8_t start, uint32_t length) {
    Bytes request{0x04, 0xC0, 9, 0, target, start, 0, 0, 0};
    for (int i = 0; i < 4; ++i) request.push_back(static_cast<uint8_t>(length >> 8 * i));
    return request;
}

Bytes modelName(uint8_t first, uint8_t second, uint8_t third, uint8_t fourth, uint8_t last) {
    return changed(Bytes(16), {{0, 3}, {2, first}, {3, second}, {4, third}, {5, fourth}, {15, last}});
}

Bytes updateData(uint8_t target) {
    Bytes data(200'000);
    data.resize(zprusbsim_update(0, target, data.data(), static_cast<uint32_t>(data.size())));
    return data;
}

TEST_F(Commands, AreAnsweredAndRefusedWhenTheyAreUnknownOrMalformed) {
    configure({{{"uniqueString", "Fotoecke"}, {"jobNumber", 7}, {"counters", {1, 2, 3, 4, 5, 6, 0x12345678}}}});
    const Bytes media{2,    0xF1, 0xF8, 3, 0,    0, 0xFC, 1, 0,    0, 0,    0,    0, 0, 0, 0, 0, 0, 0, 0, 0,
                      0,    0,    0,    0, 0,    0, 0,    0, 0,    0, 0x10, 0xF8, 3, 0, 0, 0, 0, 0, 0, 0, 0,
                      0x40, 0x1F, 0,    0, 0xFC, 1, 0,    0, 0xFE, 0, 0xFC, 1,    0, 0, 0, 0, 0, 0, 0};
    const Bytes unknown = refusal(1), wrongLength = refusal(2), outOfRange = refusal(3);
    const struct {
        const char* name;
        Bytes request, answer;
    } cases[] = {
        {"GetStatus", getStatus, success(changed(Bytes(48), {{24, 7}}))},
        {"GetMediaInfo", {0x02, 0x00, 0, 0}, success(media)},
        {"GetModelName", modelName('Z', 'P', 'R', 'F', 0), success(padded("SIMULATED", 16))},
        {"GetModelName, other letters", modelName('Z', 'P', 'R', 'X', 0), outOfRange},
        {"GetModelName, last byte", modelName('Z', 'P', 'R', 'F', 1), outOfRange},
        {"GetModelName in a frame", modelName(12, 0, 'R', 'F', 0), wrongLength},
        {"GetErrorLog", {0x04, 0x00, 0, 0}, success(Bytes(61))},
        {"GetFirmwareInfo",
         {0x03, 0xC0, 1, 0, 7},
         success(concatenate(padded("SIMULATECOMPONENT 7", 24), changed(padded("1.00", 14), {{10, 7}})))},
        {"GetEepromMaintenance, one counter", {0x05, 0xC0, 2, 0, 0xA4, 4}, success({3, 0, 0, 0})},
        {"GetEepromMaintenance, last byte", {0x05, 0xC0, 2, 0, 0xFC, 4}, success({0x78, 0x56, 0x34, 0x12})},
        {"GetEepromMaintenance, nothing", {0x05, 0xC0, 2, 0, 0xFF, 0}, success()},
        {"GetMaintenanceData",
         {0x09, 0xC0, 2, 0, 3, 4},
         success(concatenate({3, 4, 0, 0, 0, 0}, padded("SIMULATION", 32)))},
        {"GetPrinterUniqueString", {0x03, 0x80, 0, 0}, success(padded("Fotoecke", 23))},
        {"Universal", concatenate({0xFF, 0xC0, 247, 0}, pattern(247)), success(pattern(247))},
        {"unknown class", {0x01, 0x41, 0, 0}, unknown},
        {"unknown number, with a length that lies", {0x77, 0x00, 0xFF, 0xFF, 1, 2, 3}, unknown},
        {"payload where there is none", {0x01, 0x00, 1, 0, 9}, wrongLength},
        {"payload too short", {0x05, 0xC0, 1, 0, 0x60}, wrongLength},
        {"payload too long", {0x03, 0xC0, 2, 0, 1, 1}, wrongLength},
        {"count that is not the number of bytes", {0x06, 0xC0, 5, 0, 0x64, 4, 1, 2, 3}, wrongLength},
        {"firmware component 0", {0x03, 0xC0, 1, 0, 0}, outOfRange},
        {"firmware component 8", {0x03, 0xC0, 1, 0, 8}, outOfRange},
        {"memory beyond its end", {0x05, 0xC0, 2, 0, 0xFD, 4}, outOfRange},
        {"write beyond the memory", {0x06, 0xC0, 4, 0, 0xFF, 2, 1, 1}, outOfRange},
        {"permission beyond the memory", {0x02, 0x80, 2, 0, 0xFF, 2}, outOfRange},
        {"maintenance parameters, last byte", changed(Bytes(30), {{0, 8}, {1, 0xC0}, {2, 26}, {29, 1}}),
         outOfRange},
        {"empty unique string", {0x07, 0xC0, 1, 0, 0}, outOfRange},
        {"reset kind 2", {0x04, 0x40, 1, 0, 2}, outOfRange},
        {"operation button 3", {0x06, 0x40, 1, 0, 3}, outOfRange},
        {"printer parameter 2", {0x08, 0x40, 5, 0, 2, 0, 0, 0, 0}, outOfRange},
        {"write without permission", {0x06, 0xC0, 3, 0, 0x64, 1, 1}, refusal(4)},
        {"results without diagnosis", {0x02, 0xC0, 0, 0}, refusal(0x36)},
        {"diagnosis of kind 0", {0x01, 0xC0, 3, 0, 0, 1, 1}, outOfRange},
        {"diagnosis of kind 8", {0x01, 0xC0, 3, 0, 8, 1, 1}, outOfRange},
        {"diagnosis with first parameter 0", {0x01, 0xC0, 3, 0, 2, 0, 1}, outOfRange},
        {"diagnosis with second parameter 6", {0x01, 0xC0, 3, 0, 3, 2, 6}, outOfRange},
        {"tone curve of another length", updateRequest(3, 0, 1535), outOfRange},
        {"tone curve with a start", updateRequest(4, 1, 1536), outOfRange},
        {"empty firmware", updateRequest(1, 0, 0), outOfRange},
        {"firmware beyond 16 MiB", updateRequest(1, 0, (16 << 20) + 1), outOfRange},
    };
    const Host host;
    for (const auto& [name, request, answer] : cases) EXPECT_EQ(host.ask(request), answer) << name;
}

TEST_F(Commands, WhoseBytesStopComingAreRefused) {
    configure({Json::object()}, 0.1);
    const Host host;
    for (const Bytes& half : {Bytes{0x05, 0xC0, 2, 0, 0x60}, Bytes{0x01, 0x00}}) {
        EXPECT_EQ(host.ask(half), refusal(2));
        EXPECT_EQ(host.ask(getStatus), success(Bytes(48)));
    }
}

TEST_F(Commands, ReportTheConditionThatThePrinterIsIn) {
    const struct {
        const char* condition;
        uint8_t statusNumber, group, detail;
    } cases[] = {{"cover open", 0x31, 0, 0},
                 {"out of media", 0x33, 0, 0},
                 {"out of consumables", 0x34, 0, 0},
                 {"device error", 0x11, 6, 11},
                 {"ready", 0, 0, 0}};
    const Host host;
    for (const auto& [condition, statusNumber, group, detail] : cases) {
        ASSERT_EQ(zprusbsim_setCondition(0, condition, 6, 11), 1u);
        EXPECT_EQ(host.ask(getStatus), changed(success(Bytes(48), statusNumber), {{2, group}, {3, detail}}));
    }
    ASSERT_EQ(zprusbsim_setStatusFlags(0, 7, 0), 1u);
    EXPECT_EQ(host.ask(getStatus), success(changed(Bytes(48), {{32, 7}})));
    EXPECT_EQ(host.ask({0x04, 0x00, 0, 0}),
              success(concatenate({4, 0x11, 6, 11, 0x34, 0, 0, 0x33, 0, 0, 0x31, 0, 0}, Bytes(48))));
    EXPECT_EQ(zprusbsim_setCondition(0, "on fire", 0, 0), 0u);
    EXPECT_EQ(zprusbsim_setCondition(1, "ready", 0, 0), 0u);
}

TEST_F(Commands, ThatChangeThePrinterAreAcknowledgedAndTakeEffect) {
    configure({{{"counters", {9, 9}}, {"condition", "cover open"}}});
    const Bytes requests[] = {
        {0x03, 0x40, 0, 0},
        {0x04, 0x40, 1, 0, 3},
        {0x06, 0x40, 1, 0, 2},
        {0x07, 0x40, 0, 0},
        {0x08, 0x40, 5, 0, 1, 4, 3, 2, 1},
        {0x02, 0x80, 2, 0, 0x64, 4},
        {0x06, 0xC0, 6, 0, 0x64, 4, 0, 0, 0, 0},
        {0x07, 0xC0, 4, 0, 3, 'F', 'o', 'x'},
        concatenate({0x08, 0xC0, 26, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, Bytes(14)),
    };
    const Host host;
    for (const Bytes& request : requests) EXPECT_EQ(host.ask(request), success({}, 0x31)) << int(request[0]);
    for (const Bytes& request : requests) {
        Bytes taken(100);
        taken.resize(zprusbsim_takeRequest(0, taken.data(), 100));
        EXPECT_EQ(taken, request);
    }
    EXPECT_EQ(zprusbsim_takeRequest(0, nullptr, 0), 0u);
    EXPECT_EQ(host.ask({0x04, 0x00, 0, 0}), success(Bytes(61), 0x31)) << "the error log is empty";
    Json found = state();
    EXPECT_EQ(found["memory"].get<std::string>().substr(0x60 * 2, 16), "0900000000000000");
    found.erase("memory");
    found.erase("serial");
    EXPECT_EQ(found, Json::parse(R"({
        "condition": "cover open", "errorGroup": 0, "errorDetail": 0, "uniqueString": "Fox", "jobNumber": 0,
        "printedPages": 0, "counters": [9, 0, 0, 0, 0, 0, 0], "operationButton": 2, "parameter": 16909060,
        "maintenanceParams": [513, 1027, 1541, 2055, 2569, 3083], "ledFlashes": 1, "resets": 1,
        "requests": 10, "plugged": true, "diagnosis": null, "updates": []})"));
}

TEST_F(Commands, WriteTheMemoryOnlyRightAfterAPermissionForThosePlaces) {
    const Bytes write{0x06, 0xC0, 4, 0, 0x64, 2, 7, 8};
    const Bytes permission{0x02, 0x80, 2, 0, 0x64, 2};
    const std::pair<std::vector<Bytes>, Bytes> cases[] = {
        {{permission}, success()},
        {{changed(permission, {{4, 0x60}, {5, 16}})}, success()},
        {{changed(permission, {{4, 0x63}})}, refusal(4)},
        {{changed(permission, {{4, 0x65}})}, refusal(4)},
        {{permission, getStatus}, refusal(4)},
        {{permission, write}, refusal(4)},
    };
    const Host host;
    for (const auto& [before, answer] : cases) {
        for (const Bytes& request : before) EXPECT_EQ(host.ask(request)[0], 1);
        EXPECT_EQ(host.ask(write), answer) << testing::PrintToString(before);
    }
}

TEST_F(Commands, KeepTheResultsOfASelfDiagnosis) {
    const Host host;
    for (const uint8_t statusNumber : Bytes{0, 0x34}) {
        if (statusNumber == 0x34) zprusbsim_setCondition(0, "out of consumables", 0, 0);
        const bool passed = statusNumber == 0;
        const Bytes outcome{7, 13, 0, uint8_t(passed ? 1 : 2), statusNumber, 0, 0};
        EXPECT_EQ(host.ask({0x01, 0xC0, 3, 0, 7, 13, 0}), success(outcome, statusNumber));
        EXPECT_EQ(host.ask({0x02, 0xC0, 0, 0}),
                  success(concatenate(outcome, padded("SIMULATION", 33)), statusNumber));
        EXPECT_EQ(state()["diagnosis"], Json({{"kind", 7}, {"parameters", {13, 0}}, {"passed", passed}}));
    }
}

TEST_F(Commands, ForUpdatesKeepWhatComesWhole) {
    const Bytes curve = pattern(1536), image = pattern(100'000);
    {
        const Host host;
        for (const uint8_t target : Bytes{3, 4}) host.transfer(updateRequest(target, 0, 1536), curve);
        host.transfer(updateRequest(1, 5, 100'000), image);
        host.ask(getStatus);  // answered when the data have been taken
        EXPECT_EQ(state()["updates"], Json::parse(R"([{"target": 1, "start": 5, "length": 100000},
            {"target": 3, "start": 0, "length": 1536}, {"target": 4, "start": 0, "length": 1536}])"));
        EXPECT_EQ(updateData(4), curve);
        EXPECT_EQ(host.ask({0x04, 0x40, 1, 0, 4}), success());
        EXPECT_TRUE(updateData(3).empty() && updateData(4).empty());
        host.transfer(updateRequest(1, 0, 50'000), curve);
    }  // closed while the printer waits for the rest
    EXPECT_EQ(updateData(1), image);
}

}  // namespace
