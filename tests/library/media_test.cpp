#include "calls.h"
#include "open_printer.h"

namespace {

constexpr uint32_t width = 15240;
constexpr Media former{0xF1, 10000, 20000, 0, 0x01020304, {1, 2, 3, 4, 0x0506}};

struct MediaCheck : OpenPrinter {
    void offer(const std::vector<Media>& table) {
        bus[0].answer(getMediaInfo, normalAnswer(mediaPayload(table)));
    }

    uint16_t check(uint8_t mediaCode, uint32_t wide, uint32_t length) {
        return codeOf(zprusb_checkMediaInfo, mediaCode, wide, length);
    }
    uint16_t check(const Media& media) { return check(media.code, media.width, media.length); }

    /// The page command that was sent.
    Bytes pageCommand() {
        EXPECT_EQ(codeOf(zprusb_startpage, nullptr), 0);
        EXPECT_EQ(codeOf(zprusb_endpage), 0);
        return bus[0].pieces().back();
    }
    Bytes sectionCommand(uint8_t section) {
        EXPECT_EQ(codeOf(zprusb_startpagelong, nullptr, section), 0);
        return bus[0].pieces().back();
    }
};

struct Rule {
    Media offered;
    std::vector<uint32_t> accepted;
    std::vector<uint32_t> refused;
};

const Rule rules[] = {
    {{0x00, width, 5000, 9000}, {7112, 9000}, {5000, 7111, 9001}},
    {{0x20, width, 7111, 7111}, {}, {7111, 7112}},
    {{0xDF, width, 8000, 0}, {}, {7112, 8000, 25120}},
    {{0xDF, width, 8000, 30000}, {7112, 25121, 30000}, {7111, 30001}},
    {{0xE0, width, 8000, 0}, {7112, 25120}, {7111, 25121}},
    {{0xEF, width, 8000, 0}, {7112, 25120}, {7111, 25121}},
    {{0xE0, width, 8000, 26000}, {7112, 26000}, {7111, 26001}},
    {{0xEF, width, 9000, 8000}, {8000}, {8001, 9000, 25120}},
    {{0xF0, width, 500, 9000}, {500}, {499, 501, 7112, 9000}},
    {{0xFE, width, 30000, 9000}, {30000}, {29999, 30001, 7112}},
    {{0xFF, width, 500, 9000}, {7112, 9000}, {500, 7111, 9001}},
    {{0xFF, width, 8000, 0}, {}, {7112, 8000, 25120}},
};

}  // namespace

TEST_F(MediaCheck, acceptsWhatTheRuleOfTheMediaCodeAllows) {
    for (const auto& [offered, accepted, refused] : rules) {
        const uint8_t code = offered.code;
        offer({offered});
        for (const uint32_t length : accepted) {
            EXPECT_EQ(check(code, width, length), 0) << int{code} << " " << length;
            EXPECT_EQ(check(code, width - 1, length), 1006);
            EXPECT_EQ(check(code, width + 0x10000, length), 1006);
            EXPECT_EQ(check(code ^ 1, width, length), 1006);
        }
        for (const uint32_t length : refused)
            EXPECT_EQ(check(code, width, length), 1006) << int{code} << " " << length;
    }
}

TEST_F(MediaCheck, refusesASizeOfZeroWithoutAsking) {
    offer({{0xF1, 0, 9000}, {0xF1, 9000, 0}});
    EXPECT_EQ(check(0xF1, 0, 9000), 1006);
    EXPECT_EQ(check(0xF1, 9000, 0), 1006);
    EXPECT_TRUE(bus[0].pieces().empty());
}

TEST_F(MediaCheck, takesTheFirstEntryThatMatches) {
    const Media first{0x10, width, 0, 9000, 0x0A0B0C0D, {0x1101, 0x2202, 0x3303, 0x4404, 0x5505}};
    const Media second{0x10, width, 0, 20000, 0x99, {6, 7, 8, 9, 10}};
    offer({first, second});
    EXPECT_EQ(check(0x10, width, 9001), 0);
    EXPECT_EQ(sectionCommand(5)[12], 10);
    EXPECT_EQ(check(0x10, width, 9000), 0);
    for (uint8_t section = 1; section <= 5; ++section) {
        const Bytes page = sectionCommand(section);
        const auto low = static_cast<uint8_t>(section), high = static_cast<uint8_t>(0x11 * section);
        EXPECT_EQ(Bytes(page.begin() + 7, page.begin() + 17),
                  (Bytes{section, 0x0D, 0x0C, 0x0B, 0x0A, low, high, 0, 0, 0x10}));
    }
}

TEST_F(MediaCheck, looksAtNoMoreThanEightEntries) {
    std::vector<Media> table;
    for (uint8_t n = 0; n < 9; ++n) table.push_back({static_cast<uint8_t>(0xF0 + n), width, 9000u + n});
    offer(table);
    for (size_t n = 0; n < 9; ++n) EXPECT_EQ(check(table[n]), n < 8 ? 0 : 1006) << n;
    Bytes record(151);
    uint32_t length = 151;
    EXPECT_EQ(zprusb_getPrinterInfo(ZPRUSB_INFO_MEDIA, record.data(), &length), 1u);
    table.resize(8);
    Bytes expected = mediaPayload(table);
    for (size_t last = 30; last < 151; last += 30) expected[last] = 0;
    expected.resize(151);
    EXPECT_EQ(record, expected);
}

TEST_F(MediaCheck, looksAtWholeEntriesThatAreCountedOnly) {
    const Media table[] = {{0xF1, width, 9000}, {0xF2, width, 9001}, {0xF3, width, 9002}};
    const Bytes payload = mediaPayload({table[0], table[1], table[2]});
    const auto expectOffered = [&](Bytes answer, size_t offered) {
        bus[0].answer(getMediaInfo, answer);
        for (size_t n = 0; n < 3; ++n) EXPECT_EQ(check(table[n]), n < offered ? 0 : 1006);
    };
    for (const size_t length : {0u, 1u, 30u, 31u, 60u, 61u, 90u, 91u}) {
        SCOPED_TRACE(length);
        const size_t whole = length == 0 ? 0 : (length - 1) / 30;
        const Bytes cut(payload.begin(), payload.begin() + static_cast<int>(length));
        expectOffered(normalAnswer(cut), whole);
        const Bytes answer = normalAnswer(payload);
        expectOffered(Bytes(answer.begin(), answer.begin() + 10 + static_cast<int>(length)), whole);
    }
    for (uint8_t count = 0; count <= 3; ++count) {
        Bytes counted = payload;
        counted[0] = count;
        expectOffered(normalAnswer(counted), count);
    }
}

TEST_F(MediaCheck, keepsTheFormerSizeWhenItFails) {
    const Bytes size{0x10, 0x27, 0x20, 0x4E, 0xF1};
    const auto sizeOf = [](const Bytes& page) { return Bytes(page.begin() + 7, page.begin() + 12); };
    EXPECT_EQ(sizeOf(pageCommand()), Bytes(5));
    offer({former, {0xF2, width, 9000, 0, 9, {9, 9, 9, 9, 9}}});
    EXPECT_EQ(check(former), 0);
    EXPECT_EQ(check(0xF2, width, 9001), 1006);
    EXPECT_EQ(check(0xF2, 0, 9000), 1006);
    bus[0].answer(getMediaInfo, errorAnswer(3));
    EXPECT_EQ(check(0xF2, width, 9000), 2603);
    EXPECT_EQ(bus[0].countRequests(getMediaInfo), 9u);
    EXPECT_EQ(sizeOf(pageCommand()), size);
    const Bytes page = sectionCommand(5);
    EXPECT_EQ(Bytes(page.begin() + 8, page.begin() + 16), (Bytes{4, 3, 2, 1, 6, 5, 0, 0}));
}
