#include "host.h"

using namespace test;

namespace {

class Commands : public SimulatorTest {};

const Bytes getStatus{0x01, 0x00, 0, 0};

Bytes payloadOf(const Bytes& answer) {
    EXPECT_GE(answer.size(), 10u);
    EXPECT_EQ(answer[0], 1) << "error " << int(answer[1]);
    EXPECT_EQ(answer[8] + 256u * answer[9], answer.size() - 10);
    return Bytes(answer.begin() + 10, answer.end());
}

Bytes padded(const std::string& text, size_t size) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(size, 0);
    return bytes;
}

Bytes filled(size_t size, std::initializer_list<std::pair<size_t, uint8_t>> values) {
    Bytes bytes(size, 0);
    for (const auto& [offset, value] : values) bytes[offset] = value;
    return bytes;
}

Json state() {
    std::string json(zprusbsim_state(0, nullptr, 0) + 1, '\0');
    zprusbsim_state(0, json.data(), static_cast<uint32_t>(json.size()));
    json.pop_back();
    return Json::parse(json);
}

Bytes updateRequest(uint8_t target, uint8_t start, uint32_t length) {
    Bytes request{0x04, 0xC0, 9, 0, target, start, 0, 0, 0};
    for (int i = 0; i < 4; ++i) request.push_back(static_cast<uint8_t>(length >> 8 * i));
    return request;
}

Bytes updateData(uint8_t target) {
    Bytes data(zprusbsim_update(0, target, nullptr, 0));
    zprusbsim_update(0, target, data.data(), static_cast<uint32_t>(data.size()));
    return data;
}

TEST_F(Commands, AreAnsweredWithTheirPayloads) {
    configure({{"printers",
                {{{"media", smallMedia},
                  {"uniqueString", "Fotoecke"},
                  {"jobNumber", 7},
                  {"counters", {1, 2, 3, 4, 5, 6, 0x12345678}}}}}});
    const struct {
        const char* name;
        Bytes request;
        Bytes payload;
    } cases[] = {
        {"GetStatus", getStatus, filled(48, {{24, 7}})},
        {"GetMediaInfo",
         {0x02, 0x00, 0, 0},
         concatenate({2, 0xF1, 0xF8, 3, 0, 0, 0xFC, 1, 0, 0, 0, 0, 0, 0, 0, 0,
                      0, 0,    0,    0, 0, 0, 0,    0, 0, 0, 0, 0, 0, 0, 0},
                     {0x10, 0xF8, 3, 0, 0,    0, 0,    0, 0, 0, 0, 0x40, 0x1F, 0, 0,
                      0xFC, 1,    0, 0, 0xFE, 0, 0xFC, 1, 0, 0, 0, 0,    0,    0, 0})},
        {"GetModelName",
         {0x03, 0x00, 'Z', 'P', 'R', 'F', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
         padded("SIMULATED", 16)},
        {"GetErrorLog", {0x04, 0x00, 0, 0}, Bytes(61, 0)},
        {"GetFirmwareInfo, first",
         {0x03, 0xC0, 1, 0, 1},
         concatenate(padded("SIMULATE"
                            "COMPONENT 1",
                            24),
                     concatenate(padded("1.00", 10), {1, 0, 0, 0}))},
        {"GetFirmwareInfo, last",
         {0x03, 0xC0, 1, 0, 7},
         concatenate(padded("SIMULATE"
                            "COMPONENT 7",
                            24),
                     concatenate(padded("1.00", 10), {7, 0, 0, 0}))},
        {"GetEepromMaintenance, one counter", {0x05, 0xC0, 2, 0, 0xA4, 4}, {3, 0, 0, 0}},
        {"GetEepromMaintenance, last byte", {0x05, 0xC0, 2, 0, 0xFC, 4}, {0x78, 0x56, 0x34, 0x12}},
        {"GetEepromMaintenance, nothing", {0x05, 0xC0, 2, 0, 0xFF, 0}, {}},
        {"GetMaintenanceData",
         {0x09, 0xC0, 2, 0, 3, 4},
         concatenate({3, 4, 0, 0, 0, 0}, padded("SIMULATION", 32))},
        {"GetPrinterUniqueString", {0x03, 0x80, 0, 0}, padded("Fotoecke", 23)},
        {"Universal, shortest", {0xFF, 0xC0, 1, 0, 8}, {8}},
        {"Universal, longest", concatenate({0xFF, 0xC0, 247, 0}, pattern(247)), pattern(247)},
    };
    const Host host;
    for (const auto& [name, request, payload] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(payloadOf(host.ask(request)), payload);
    }
}

TEST_F(Commands, AreRefusedWhenTheyAreUnknownOrMalformed) {
    constexpr uint8_t unknown = 1, wrongLength = 2, outOfRange = 3, notPermitted = 4, noResults = 0x36;
    const struct {
        const char* name;
        Bytes request;
        uint8_t error;
    } cases[] = {
        {"unknown number", {0x77, 0x00, 0, 0}, unknown},
        {"unknown class", {0x01, 0x41, 0, 0}, unknown},
        {"unknown, with a length that lies", {0x77, 0x00, 0xFF, 0xFF, 1, 2, 3}, unknown},
        {"payload where there is none", {0x01, 0x00, 1, 0, 9}, wrongLength},
        {"payload too short", {0x05, 0xC0, 1, 0, 0x60}, wrongLength},
        {"payload too long", {0x03, 0xC0, 2, 0, 1, 1}, wrongLength},
        {"count that is not the number of bytes", {0x06, 0xC0, 5, 0, 0x64, 4, 1, 2, 3}, wrongLength},
        {"unique string without its count", {0x07, 0xC0, 0, 0}, wrongLength},
        {"universal command with nothing", {0xFF, 0xC0, 0, 0}, wrongLength},
        {"universal command too long", concatenate({0xFF, 0xC0, 248, 0}, Bytes(248)), wrongLength},
        {"firmware component 0", {0x03, 0xC0, 1, 0, 0}, outOfRange},
        {"firmware component 8", {0x03, 0xC0, 1, 0, 8}, outOfRange},
        {"memory beyond its end", {0x05, 0xC0, 2, 0, 0xFD, 4}, outOfRange},
        {"write beyond the memory", {0x06, 0xC0, 4, 0, 0xFF, 2, 1, 1}, outOfRange},
        {"permission beyond the memory", {0x02, 0x80, 2, 0, 0xFF, 2}, outOfRange},
        {"empty unique string", {0x07, 0xC0, 1, 0, 0}, outOfRange},
        {"reset kind 2", {0x04, 0x40, 1, 0, 2}, outOfRange},
        {"operation button 3", {0x06, 0x40, 1, 0, 3}, outOfRange},
        {"printer parameter 2", {0x08, 0x40, 5, 0, 2, 0, 0, 0, 0}, outOfRange},
        {"write without permission", {0x06, 0xC0, 3, 0, 0x64, 1, 1}, notPermitted},
        {"results without diagnosis", {0x02, 0xC0, 0, 0}, noResults},
        {"diagnosis of kind 0", {0x01, 0xC0, 3, 0, 0, 1, 1}, outOfRange},
        {"diagnosis of kind 8", {0x01, 0xC0, 3, 0, 8, 1, 1}, outOfRange},
        {"diagnosis with first parameter 0", {0x01, 0xC0, 3, 0, 2, 0, 1}, outOfRange},
        {"diagnosis with first parameter 14", {0x01, 0xC0, 3, 0, 7, 14, 1}, outOfRange},
        {"diagnosis with second parameter 6", {0x01, 0xC0, 3, 0, 3, 2, 6}, outOfRange},
        {"tone curve of another length", updateRequest(3, 0, 1535), outOfRange},
        {"tone curve with a start", updateRequest(4, 1, 1536), outOfRange},
        {"empty firmware", updateRequest(1, 0, 0), outOfRange},
        {"firmware beyond 16 MiB", updateRequest(1, 0, (16 << 20) + 1), outOfRange},
    };
    const Host host;
    for (const auto& [name, request, error] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(host.ask(request), refusal(error));
        EXPECT_EQ(payloadOf(host.ask(getStatus)).size(), 48u);
    }
}

TEST_F(Commands, WhoseBytesStopComingAreRefused) {
    configure({{"dataTimeoutSeconds", 0.1}});
    const Host host;
    for (const Bytes& half : {Bytes{0x05, 0xC0, 2, 0, 0x60}, Bytes{0x01, 0x00}}) {
        EXPECT_EQ(host.ask(half), refusal(2));
        EXPECT_EQ(payloadOf(host.ask(getStatus)).size(), 48u);
    }
}

TEST_F(Commands, ReportTheConditionThatThePrinterIsIn) {
    const struct {
        const char* condition;
        uint8_t statusNumber;
        bool hasDetail;
    } cases[] = {{"cover open", 0x31, false},
                 {"out of media", 0x33, false},
                 {"out of consumables", 0x34, false},
                 {"device error", 0x11, true},
                 {"ready", 0, false}};
    const Host host;
    for (const auto& [condition, statusNumber, hasDetail] : cases) {
        SCOPED_TRACE(condition);
        ASSERT_EQ(zprusbsim_setCondition(0, condition, 6, 11), 1u);
        const Bytes answer = host.ask(getStatus);
        EXPECT_EQ(answer[7], statusNumber);
        EXPECT_EQ(answer[2], hasDetail ? 6 : 0);
        EXPECT_EQ(answer[3], hasDetail ? 11 : 0);
    }
    const Bytes log = payloadOf(host.ask({0x04, 0x00, 0, 0}));
    EXPECT_EQ(Bytes(log.begin(), log.begin() + 13),
              (Bytes{4, 0x11, 6, 11, 0x34, 0, 0, 0x33, 0, 0, 0x31, 0, 0}));
    EXPECT_EQ(zprusbsim_setCondition(0, "on fire", 0, 0), 0u);
    EXPECT_EQ(zprusbsim_setCondition(1, "ready", 0, 0), 0u);
}

TEST_F(Commands, ThatChangeThePrinterAreAcknowledgedAndTakeEffect) {
    configure({{"printers", {{{"counters", {9, 9}}, {"condition", "cover open"}}}}});
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
    for (const Bytes& request : requests)
        EXPECT_EQ(host.ask(request), acknowledgement(0x31)) << int(request[0]);
    EXPECT_EQ(payloadOf(host.ask({0x04, 0x00, 0, 0})), Bytes(61, 0));
    EXPECT_EQ(payloadOf(host.ask({0x05, 0xC0, 2, 0, 0x60, 8})), (Bytes{9, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(payloadOf(host.ask({0x03, 0x80, 0, 0})), padded("Fox", 23));
    const Bytes maintenance = payloadOf(host.ask({0x09, 0xC0, 2, 0, 0, 0}));
    EXPECT_EQ(Bytes(maintenance.begin() + 16, maintenance.end()),
              concatenate({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, Bytes(10)));

    Json found = state();
    EXPECT_EQ(found["memory"].get<std::string>().substr(0x60 * 2, 16), "0900000000000000");
    found.erase("memory");
    EXPECT_EQ(found, Json::parse(R"({
        "condition": "cover open", "errorGroup": 0, "errorDetail": 0, "uniqueString": "Fox", "jobNumber": 0,
        "printedPages": 0, "counters": [9, 0, 0, 0, 0, 0, 0], "operationButton": 2, "parameter": 16909060,
        "maintenanceParams": [513, 1027, 1541, 2055, 2569, 3083], "ledFlashes": 1, "resets": 1,
        "requests": 13, "diagnosis": null, "updates": []})"));
}

TEST_F(Commands, WriteTheMemoryOnlyRightAfterAPermissionForThosePlaces) {
    const Bytes write{0x06, 0xC0, 4, 0, 0x64, 2, 7, 8};
    const auto permission = [](uint8_t address, uint8_t count) {
        return Bytes{0x02, 0x80, 2, 0, address, count};
    };
    const struct {
        const char* name;
        std::vector<Bytes> before;
        bool permitted;
    } cases[] = {
        {"the same bytes", {permission(0x64, 2)}, true},
        {"more bytes", {permission(0x60, 16)}, true},
        {"bytes before", {permission(0x63, 2)}, false},
        {"bytes after", {permission(0x65, 2)}, false},
        {"not the last request", {permission(0x64, 2), getStatus}, false},
        {"used up", {permission(0x64, 2), write}, false},
    };
    const Host host;
    for (const auto& [name, before, permitted] : cases) {
        SCOPED_TRACE(name);
        for (const Bytes& request : before) EXPECT_EQ(host.ask(request)[0], 1);
        EXPECT_EQ(host.ask(write), permitted ? acknowledgement() : refusal(4));
    }
}

TEST_F(Commands, KeepTheResultsOfASelfDiagnosis) {
    const Host host;
    for (const Bytes& asked : {Bytes{1, 9, 9}, Bytes{3, 2, 5}, Bytes{7, 13, 0}, Bytes{4, 1, 3}}) {
        const bool fails = asked[0] == 4;
        if (fails) zprusbsim_setCondition(0, "device error", 6, 11);
        const Bytes outcome = concatenate(asked, fails ? Bytes{2, 0x11, 6, 11} : Bytes{1, 0, 0, 0});
        EXPECT_EQ(payloadOf(host.ask(concatenate({0x01, 0xC0, 3, 0}, asked))), outcome);
        EXPECT_EQ(payloadOf(host.ask({0x02, 0xC0, 0, 0})), concatenate(outcome, padded("SIMULATION", 33)));
        const Json expected{{"kind", asked[0]}, {"parameters", {asked[1], asked[2]}}, {"passed", !fails}};
        EXPECT_EQ(state()["diagnosis"], expected);
    }
}

TEST_F(Commands, ForUpdatesKeepWhatComesWhole) {
    const Bytes curve = pattern(1536), image = pattern(100'000);
    {
        const Host host;
        for (const uint8_t target : Bytes{3, 4}) {
            EXPECT_EQ(host.ask(updateRequest(target, 0, 1536)), acknowledgement());
            EXPECT_TRUE(host.send(curve));
        }
        EXPECT_EQ(host.ask(updateRequest(1, 5, 100'000)), acknowledgement());
        EXPECT_TRUE(host.send(image));
        host.ask(getStatus);  // answered when the data have been taken
        EXPECT_EQ(state()["updates"], Json::parse(R"([{"target": 1, "start": 5, "length": 100000},
            {"target": 3, "start": 0, "length": 1536}, {"target": 4, "start": 0, "length": 1536}])"));
        EXPECT_EQ(updateData(4), curve);
        EXPECT_EQ(host.ask({0x04, 0x40, 1, 0, 4}), acknowledgement());
        EXPECT_TRUE(updateData(3).empty() && updateData(4).empty());
        EXPECT_EQ(host.ask(updateRequest(1, 0, 50'000)), acknowledgement());
        EXPECT_TRUE(host.send(curve));
    }  // closed while the printer waits for the rest
    EXPECT_EQ(updateData(1), image);
}

TEST_F(Commands, AreKeptAsTheyArrived) {
    const Bytes requests[] = {getStatus, {0x77, 0x00, 3, 0, 1, 2, 3}, {0x05, 0xC0, 2, 0, 0x60, 4}};
    const Host host;
    for (const Bytes& request : requests) host.ask(request);
    for (const Bytes& request : requests) {
        Bytes taken(300);
        taken.resize(zprusbsim_takeRequest(0, taken.data(), 300));
        EXPECT_EQ(taken, request);
    }
    uint8_t untouched = 99;
    EXPECT_EQ(zprusbsim_takeRequest(0, &untouched, 1), 0u);
    host.ask(getStatus);
    EXPECT_EQ(zprusbsim_takeRequest(0, &untouched, 0), 4u);
    EXPECT_EQ(untouched, 99);
}

}  // namespace
