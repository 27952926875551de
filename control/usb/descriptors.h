/// What a device says of itself, as the kernel has read it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace usb {

struct Endpoints {
    uint8_t interface = 0;
    uint8_t out = 0;
    uint8_t in = 0;
    uint16_t inPacket = 0;  // the most bytes of one packet
};

constexpr size_t largestPacket = 1024;

/// Finds the first interface of the first configuration that has a bulk endpoint each way. The bytes may be
/// anything: what is cut off or contradicts itself gives no endpoints.
/// @return whether there is one.
bool findEndpoints(const uint8_t* bytes, size_t length, Endpoints& endpoints);

}  // namespace usb
