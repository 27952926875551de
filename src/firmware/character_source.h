#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "platform/file.h"

namespace firmware {

/// The characters of a file, through a buffer, in pieces as long as the fields of a record.
class CharacterSource {
public:
    static constexpr uint32_t longestPiece = 2 * 255;
    static constexpr uint32_t slack = 32;  // characters behind a piece that can be read and mean nothing

    /// @param capacity 0 reads one character with each request.
    CharacterSource(platform::File& file, uint32_t capacity)
        : file_(file),
          capacity_(std::max(capacity, uint32_t{1})),
          buffer_(static_cast<uint8_t*>(std::calloc(size_t{capacity_} + slack, 1))) {}
    ~CharacterSource() { std::free(buffer_); }
    CharacterSource(const CharacterSource&) = delete;
    CharacterSource& operator=(const CharacterSource&) = delete;
    explicit operator bool() const { return buffer_ != nullptr; }

    /// Characters that stand one behind another, valid until the next call, with `slack` ones behind them.
    struct Piece {
        const uint8_t* characters;
        uint32_t count;
    };

    /// @param count at most `longestPiece`.
    /// @return the next characters; fewer when the file ends before.
    Piece take(uint32_t count) {
        if (count > remaining_) return assemble(count);
        const uint8_t* characters = buffer_ + position_;
        advance(count);
        return {characters, count};
    }

    /// Skips characters up to the next one of this value, which is left to be taken, or as many as `limit`.
    /// @param skipped receives their number.
    /// @return false when the file ends before.
    bool skipTo(uint8_t wanted, uint32_t limit, uint32_t& skipped) {
        skipped = 0;
        while (skipped < limit) {
            if (remaining_ == 0 && !refill()) return false;
            const uint8_t* begin = buffer_ + position_;
            const uint8_t* end = begin + std::min(remaining_, limit - skipped);
            const uint8_t* found = std::find(begin, end, wanted);
            advance(static_cast<uint32_t>(found - begin));
            skipped += static_cast<uint32_t>(found - begin);
            if (found != end) break;
        }
        return true;
    }

private:
    void advance(uint32_t count) {
        position_ += count;
        remaining_ -= count;
    }

    bool refill() {
        position_ = 0;
        return file_.read(buffer_, capacity_, remaining_) && remaining_ > 0;
    }

    /// A piece that lies across the end of the buffer.
    Piece assemble(uint32_t count) {
        uint32_t filled = 0;
        while (filled < count && (remaining_ > 0 || refill())) {
            const uint32_t present = std::min(remaining_, count - filled);
            std::memcpy(assembled_ + filled, buffer_ + position_, present);
            advance(present);
            filled += present;
        }
        return {assembled_, filled};
    }

    platform::File& file_;
    const uint32_t capacity_;
    uint8_t* const buffer_;
    uint32_t position_ = 0;   // of the next character in the buffer
    uint32_t remaining_ = 0;  // characters of the buffer that have not been taken
    uint8_t assembled_[longestPiece + slack] = {};
};

}  // namespace firmware
