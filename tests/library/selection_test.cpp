#include <cstring>

#include "api/object_table.h"
#include "calls.h"
#include "open_printer.h"

namespace {

const char noLabel[ZPRUSB_LABEL_SIZE] = {};
const char otherLabel[] = "A label of 23 letters..";
static_assert(sizeof otherLabel == ZPRUSB_LABEL_SIZE + 1);
const std::string camera = "\\\\?\\usb#vid_1234&pid_5678#camera";
constexpr uint64_t noId = 0, anyId = ~uint64_t{0};

struct TwoPrinters : OpenPrinters<2> {};

uint16_t codeOfLabel(const char* label, const char* selected) {
    uint16_t code = 0xABCD;
    const char* result = zprusb_selectPrinterLbl(label, &code);
    if (selected == nullptr) {
        EXPECT_EQ(result, nullptr);
    } else {
        EXPECT_EQ(std::memcmp(result, selected, ZPRUSB_LABEL_SIZE), 0);
    }
    return code;
}

uint16_t codeOfId(uint64_t id, uint64_t selected) {
    uint16_t code = 0xABCD;
    EXPECT_EQ(std::memcmp(zprusb_selectPrinterId(id, &code), &selected, sizeof selected), 0);
    return code;
}

}  // namespace

TEST(Enumeration, closesAndLeavesOutEveryDeviceThatIsNoPrinter) {
    const std::string start = "\\\\?\\usb#vid_";
    const struct {
        std::string path;
        uint64_t handle = 1;
        bool failPipes = false;
    } devices[] = {
        {start + "1234&pid_0012#x"},
        {start + "5a2c&pid_0013#x"},
        {start + "5A2C&pid_0012#x"},
        {"usb#vid_5a2c&pid_0012#x"},
        {start + "5a2c&pid_001"},
        {"\\\\?"},
        {""},
        {FakeBus::printerPath(9), 1, true},
        {FakeBus::printerPath(9), 128},
        {FakeBus::printerPath(9), uint64_t{1} << 32},
        {FakeBus::printerPath(9), ~uint64_t{1}},
    };
    for (const auto& [path, handle, failPipes] : devices) {
        SCOPED_TRACE(path);
        FakeBus bus(1);
        FakeDevice& added = bus.add(path);
        added.handle = handle;
        added.failPipes = failPipes;
        bus.add(FakeBus::printerPath(2)).handle = 3;
        bus[0].handle = 127;
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(selectedPrinter(), 255u);
        EXPECT_EQ(bus.countCalls("Close " + std::to_string(handle)), 1u);
        EXPECT_EQ(listPrinters(), (Bytes{127, 3})) << "by their handles, in the order found";
        EXPECT_EQ(zprusb_selectPrinter(3, nullptr), 3u);
        EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
        EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 255u);
        zprusb_close();
    }
}

TEST_F(TwoPrinters, stayAsTheyAreDuringAnEnumeration) {
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    EXPECT_EQ(codeOf(zprusb_startpage, nullptr), ZPRUSB_SUCCESS);
    bus[0].path = camera;
    bus.add(FakeBus::printerPath(2));
    for (int round = 0; round < 3; ++round) EXPECT_EQ(listPrinters(), (Bytes{0, 1}));
    EXPECT_EQ(bus.calls(), (std::vector<std::string>{"Open 0", "Open 1"}));
    EXPECT_EQ(selectedPrinter(), 1u);
    EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_PRINTER_BUSY);
    EXPECT_EQ(codeOf(zprusb_endpage), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeElsewhere(zprusb_status), ZPRUSB_SUCCESS);
}

TEST(Enumeration, listsTheIdentitiesOfAFullTableAsNone) {
    FakeBus bus(128);
    for (const uint32_t present : {128u, 127u}) {
        bus[127].present = present == 128;
        EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
        EXPECT_EQ(listPrinters().size(), present);
        EXPECT_EQ(listLabels(), std::pair(present % 128, std::string(2944, '\0')));
        Bytes ids(present % 128 * 8, 0);
        ids.resize(1024, 0xFF);
        EXPECT_EQ(listIds(), std::pair(present % 128, ids));
        zprusb_close();
    }
}

TEST_F(TwoPrinters, areSelectedByNumber) {
    const struct {
        uint8_t number;
        uint16_t code;
        uint32_t selected;
    } steps[] = {{255, 0, 0},      {1, 0, 1},        {255, 0, 1}, {2, 1008, 255},
                 {128, 1008, 255}, {200, 1008, 255}, {255, 0, 1}, {0, 0, 0}};
    for (const auto& step : steps) {
        uint16_t code = 0xABCD;
        EXPECT_EQ(zprusb_selectPrinter(step.number, &code), step.selected);
        EXPECT_EQ(code, step.code);
        noteCode(code);
    }
}

TEST_F(TwoPrinters, haveTheSameEmptyLabelAndIdentifierSoThatTheFirstIsSelected) {
    const api::ObjectUse object(0);
    EXPECT_EQ(codeOfId(anyId, noId), ZPRUSB_SUCCESS);
    for (const auto select :
         {+[] { return codeOfLabel(noLabel, noLabel); }, +[] { return codeOfId(noId, noId); }}) {
        EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
        EXPECT_EQ((*object).page.printOption20, 1) << "kept when a printer was selected by its number";
        (*object).page.printOption20 = 5;
        EXPECT_EQ(codeOfLabel(otherLabel, noLabel), ZPRUSB_NOT_SELECTABLE);
        EXPECT_EQ(codeOfLabel(nullptr, noLabel), ZPRUSB_SUCCESS);
        EXPECT_EQ(codeOfId(0x0102030405060708, noId), ZPRUSB_NOT_SELECTABLE);
        EXPECT_EQ(codeOfId(anyId, noId), ZPRUSB_SUCCESS);
        EXPECT_EQ(selectedPrinter(), 1u);
        EXPECT_EQ(select(), ZPRUSB_SUCCESS);
        EXPECT_EQ(selectedPrinter(), 0u);
        EXPECT_EQ((*object).page.printOption20, 5);
    }
}

TEST(Selection, stopsAtAFirstDeviceThatIsNoPrinterUnlessItIsByNumber) {
    FakeBus bus(0);
    bus.add(camera);
    bus.add(FakeBus::printerPath(1));
    EXPECT_EQ(codeOf(zprusb_open), ZPRUSB_SUCCESS);
    EXPECT_EQ(codeOfLabel(nullptr, nullptr), ZPRUSB_NO_PRINTER);
    EXPECT_EQ(codeOfLabel(noLabel, noLabel), ZPRUSB_NOT_SELECTABLE);
    EXPECT_EQ(codeOfId(anyId, anyId), ZPRUSB_NOT_SELECTABLE);
    EXPECT_EQ(codeOfId(noId, anyId), ZPRUSB_NOT_SELECTABLE);
    EXPECT_EQ(selectedPrinter(), 255u);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_NO_PRINTER);
    EXPECT_EQ(listPrinters(), Bytes{1});
    EXPECT_EQ(zprusb_selectPrinter(1, nullptr), 1u);
    EXPECT_EQ(codeOf(zprusb_status), ZPRUSB_SUCCESS);
    zprusb_close();
}
