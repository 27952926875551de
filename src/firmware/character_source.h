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
        if (count > remaining()) return assemble(count);
        const uint8_t* characters = next_;
        next_ += count;
        return {characters, count};
    }

    /// Skips characters up to the next one of this value, which is left to be taken, or as many as `limit`.
    /// @param skipped receives their number.
    /// @return false when the file ends before.
    bool skipTo(uint8_t wanted, uint32_t limit, uint32_t& skipped) {
        skipped = 0;
        while (skipped < limit) {
            if (remaining() == 0 && !refill()) return false;
            const uint8_t* end = next_ + std::min(remaining(), limit - skipped);
            const uint8_t* found = std::find(next_, end, wanted);
            skipped += static_cast<uint32_t>(found - next_);
            next_ = found;
            if (found != end) break;
        }
        return true;
    }

private:
    uint32_t remaining() const { return static_cast<uint32_t>(end_ - next_); }

    bool refill() {
        uint32_t count = 0;
        const bool read = file_.read(buffer_, capacity_, count);
        next_ = buffer_;
        end_ = buffer_ + count;
        return read && count > 0;
    }

    /// A piece that lies across the end of the buffer.
    Piece assemble(uint32_t count) {
        uint32_t filled = 0;
        while (filled < count && (remaining() > 0 || refill())) {
            const uint32_t present = std::min(remaining(), count - filled);
            std::memcpy(assembled_ + filled, next_, present);
            next_ += present;
            filled += present;
        }
        return {assembled_, filled};
    }

    platform::File& file_;
    const uint32_t capacity_;
    uint8_t* const buffer_;
    const uint8_t* next_ = buffer_;  // the characters of the buffer that have not been taken
    const uint8_t* end_ = buffer_;
    uint8_t assembled_[longestPiece + slack] = {};
};

}  // namespace firmware
