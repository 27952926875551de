/// The layout of the printer's answers.
#pragma once

#include <array>
#include <cstdint>

#include "device/transport.h"

namespace protocol {

/// One answer as it was read: a header of 10 bytes, then the payload. Bytes that did not arrive are zero.
struct Answer {
    static constexpr uint32_t headerLength = 10;
    static constexpr uint8_t normalAnswer = 1;
    static constexpr uint8_t errorAnswer = 2;

    std::array<uint8_t, device::directReadCapacity> bytes{};
    uint32_t count = 0;  // bytes that arrived

    bool isError() const { return kind() == errorAnswer; }
    uint8_t kind() const { return bytes[0]; }
    uint8_t errorCode() const { return bytes[1]; }
    uint8_t errorGroup() const { return bytes[2]; }
    uint8_t errorDetail() const { return bytes[3]; }
    uint8_t statusCode() const { return bytes[7]; }
    uint32_t payloadLength() const { return bytes[8] + bytes[9] * 0x100u; }
    const uint8_t* payload() const { return bytes.data() + headerLength; }

    /// An answer is complete when one read delivers just what its header announces.
    bool isComplete() const { return count == payloadLength() + headerLength; }
};

/// The error and status number that has its code in group and detail.
constexpr uint8_t deviceErrorNumber = 0x11;

/// Where the payload of a GetStatus answer carries what is used of it.
namespace statusPayload {
constexpr uint32_t jobNumber = 24;   // of the last page, with 7 bytes of the printer's own behind it
constexpr uint32_t firstFlag = 32;   // no page can be started while it is not 0
constexpr uint32_t secondFlag = 39;  // both flags together: the printer is not ready
constexpr uint32_t threeWords = 42;  // 6 bytes of the printer's own
}  // namespace statusPayload

/// What an answer brought behind its header.
struct Payload {
    std::array<uint8_t, device::directReadCapacity> bytes{};  // zero behind what arrived
    uint32_t count = 0;                                       // bytes that arrived, at most what was announced
};

}  // namespace protocol
