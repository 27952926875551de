#pragma once

#include <cstring>

#include "protocol/command.h"

namespace protocol {

/// The bytes of one request, assembled field by field; its payload length follows from them. One without a
/// command is empty: it stands for an argument that was refused, and is not sent.
class Request {
public:
    Request() = default;
    explicit Request(Command command) : length_(headerLength) {
        bytes_[0] = command.commandNo;
        bytes_[1] = command.commandClass;
    }

    /// The given bytes and nothing else: a request without the header that all others have.
    template <uint32_t count>
    static Request fixed(const uint8_t (&bytes)[count]) {
        Request request;
        std::memcpy(request.bytes_, bytes, count);
        request.length_ = count;
        return request;
    }

    Request& byte(uint8_t value) { return bytes(&value, 1); }
    Request& word(uint16_t value) {
        return byte(static_cast<uint8_t>(value)).byte(static_cast<uint8_t>(value >> 8));
    }
    Request& doubleWord(uint32_t value) {
        return word(static_cast<uint16_t>(value)).word(static_cast<uint16_t>(value >> 16));
    }
    Request& bytes(const uint8_t* values, uint32_t count) {
        if (count != 0) std::memcpy(bytes_ + length_, values, count);
        return grow(count);
    }
    Request& zeros(uint32_t count) { return grow(count); }

    const uint8_t* data() const { return bytes_; }
    uint32_t length() const { return length_; }
    bool isEmpty() const { return length_ == 0; }

private:
    Request& grow(uint32_t count) {
        length_ += count;
        const uint32_t payloadLength = length_ - headerLength;
        bytes_[2] = static_cast<uint8_t>(payloadLength);
        bytes_[3] = static_cast<uint8_t>(payloadLength >> 8);
        return *this;
    }

    static constexpr uint32_t headerLength = 4;
    // The longest one, 255 bytes of maintenance memory, has 261.
    static constexpr uint32_t capacity = 272;
    uint8_t bytes_[capacity] = {};
    uint32_t length_ = 0;
};

}  // namespace protocol
