#include "calls.h"
#include "open_printer.h"

namespace {

constexpr uint32_t width = 15240;
struct MediaCheck : OpenPrinter {
    void offer(const std::vector<Media>& table) {
        bus[0].answer(getMediaInfo, normalAnswer(mediaPayload(table)));
    }

    uint16_t check(uint8_t mediaCode, uint32_t wide, uint32_t length) {
        return codeOf(zprusb_checkMediaInfo, mediaCode, wide, length);
    }
    uint16_t check(const Media& media) { return check(media.code, media.width, media.length); }

    /// What the command of a long page tells of its size, as 8 bytes, and its media code.
    Bytes sizeOfPage(uint8_t section) {
        EXPECT_EQ(codeOf(zprusb_startpagelong, nullptr, section), 0);
        EXPECT_EQ(codeOf(zprusb_endpage), 0);
        const Bytes page = bus[0].pieces().back();
        return Bytes(page.begin() + 8, page.begin() + 17);
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
    offer({{0x10, width, 0, 9000, 8, {1, 1, 1, 1, 0x0105}}, {0x10, width, 0, 20000, 9, {6, 7, 8, 9, 10}}});
    EXPECT_EQ(check(0x10, width, 9001), 0);
    EXPECT_EQ(sizeOfPage(5), (Bytes{9, 0, 0, 0, 10, 0, 0, 0, 0x10}));
    EXPECT_EQ(check(0x10, width, 9000), 0);
    EXPECT_EQ(sizeOfPage(5), (Bytes{8, 0, 0, 0, 5, 1, 0, 0, 0x10}));
}

TEST_F(MediaCheck, looksAtNoMoreThanEightEntries) {
    std::vector<Media> table;
    for (uint8_t n = 0; n < 9; ++n) table.push_back({static_cast<uint8_t>(0xF0 + n), width, 9000u + n});
    offer(table);
    for (size_t n = 0; n < 9; ++n) EXPECT_EQ(check(table[n]), n < 8 ? 0 : 1006) << n;
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
    EXPECT_EQ(sizeOfPage(0), Bytes(9));
    const Media former{0xF1, 10000, 20000, 0, 0x01020304, {1, 2, 3, 4, 0x0506}};
    offer({former, {0xF2, width, 9000, 0, 9, {9, 9, 9, 9, 9}}});
    EXPECT_EQ(check(former), 0);
    EXPECT_EQ(check(0xF2, width, 9001), 1006);
    EXPECT_EQ(check(0xF2, 0, 9000), 1006);
    bus[0].answer(getMediaInfo, errorAnswer(3));
    EXPECT_EQ(check(0xF2, width, 9000), 2603);
    EXPECT_EQ(sizeOfPage(0), (Bytes{0x10, 0x27, 0, 0, 0x20, 0x4E, 0, 0, 0xF1}));
    EXPECT_EQ(sizeOfPage(5), (Bytes{4, 3, 2, 1, 6, 5, 0, 0, 0xF1}));
}
