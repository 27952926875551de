/// What an emulated printer says of itself.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace usb_test {

using Bytes = std::vector<uint8_t>;

constexpr uint8_t outEndpoint = 0x01;
constexpr uint8_t inEndpoint = 0x82;
constexpr uint16_t vendor = 0x5A2C;
constexpr uint16_t product = 0x0012;

struct Kind {
    bool isPrinterClass = true;  // otherwise of a class of its maker's
    bool isFullSpeed = false;    // otherwise high speed
    std::string serial = "0001";

    uint8_t interfaceClass() const { return isPrinterClass ? 7 : 0xFF; }
    uint8_t interfaceSubclass() const { return isPrinterClass ? 1 : 0; }
    uint8_t interfaceProtocol() const { return isPrinterClass ? 2 : 0; }
    uint16_t packetSize() const { return isFullSpeed ? 64 : 512; }
};

/// @return nothing where there is no such descriptor.
Bytes descriptor(const Kind& kind, uint8_t type, uint8_t index);

}  // namespace usb_test
