#pragma once

#include <cstring>

#include "device/transport.h"
#include "protocol/command.h"

namespace protocol {

/// Assembles one request, field by field.
class CommandFrame {
public:
    /// @param countedBytes how many bytes of the caller's the payload carries beside its fixed fields.
    explicit CommandFrame(const Command& command, uint8_t countedBytes = 0) {
        byte(command.commandNo).byte(command.commandClass);
        word(static_cast<uint16_t>(command.payloadLength + countedBytes));
    }

    CommandFrame& byte(uint8_t value) {
        bytes_[length_++] = value;
        return *this;
    }
    CommandFrame& word(uint16_t value) {
        return byte(static_cast<uint8_t>(value)).byte(static_cast<uint8_t>(value >> 8));
    }
    CommandFrame& doubleWord(uint32_t value) {
        return word(static_cast<uint16_t>(value)).word(static_cast<uint16_t>(value >> 16));
    }
    CommandFrame& bytes(const uint8_t* values, uint8_t count) {
        if (count != 0) std::memcpy(bytes_ + length_, values, count);
        length_ += count;
        return *this;
    }
    CommandFrame& zeros(uint32_t count) {
        std::memset(bytes_ + length_, 0, count);
        length_ += count;
        return *this;
    }

    bool send(device::PipeWriter& writer, uint16_t* resultCode) const {
        return device::workerWrite(writer, bytes_, length_, resultCode);
    }
    bool sendDirectly(device::PipeWriter& writer, uint16_t* resultCode) const {
        return device::directWrite(writer, bytes_, length_, resultCode);
    }

private:
    // The longest frame, 255 bytes of maintenance memory, has 261.
    static constexpr uint32_t frameCapacity = 272;
    uint8_t bytes_[frameCapacity];
    uint32_t length_ = 0;
};

}  // namespace protocol
