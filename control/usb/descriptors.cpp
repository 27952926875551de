#include "descriptors.h"

namespace usb {
namespace {

constexpr uint8_t configuration = 2, interface = 4, endpoint = 5;  // kinds of descriptors
constexpr size_t interfaceSize = 9, endpointSize = 7;
constexpr uint8_t directionIn = 0x80;
constexpr uint8_t bulk = 2, typeMask = 3;
constexpr unsigned smallestPacket = 8, packetMask = 0x7FF;

bool isComplete(const Endpoints& endpoints) {
    return endpoints.in != 0 && endpoints.out != 0;
}

bool isPacketSize(unsigned size) {
    return size >= smallestPacket && size <= largestPacket && (size & (size - 1)) == 0;
}

void add(const uint8_t* descriptor, Endpoints& endpoints) {
    const unsigned packet = (descriptor[4] | unsigned{descriptor[5]} << 8) & packetMask;
    if ((descriptor[3] & typeMask) != bulk || !isPacketSize(packet)) return;
    const uint8_t address = descriptor[2];
    if ((address & directionIn) == 0) {
        if (endpoints.out == 0) endpoints.out = address;
    } else if (endpoints.in == 0) {
        endpoints.in = address;
        endpoints.inPacket = static_cast<uint16_t>(packet);
    }
}

}  // namespace

bool findEndpoints(const uint8_t* bytes, size_t length, Endpoints& endpoints) {
    endpoints = {};
    bool usable = false;  // within an interface as it is after plugging in
    unsigned configurations = 0;
    for (size_t size = 0; length >= 2; bytes += size, length -= size) {
        size = bytes[0];
        if (size < 2 || size > length) break;
        if (bytes[1] == configuration && ++configurations > 1) break;
        if (bytes[1] == interface) {
            if (isComplete(endpoints)) break;
            usable = size >= interfaceSize && bytes[3] == 0;
            endpoints = {};
            endpoints.interface = bytes[2];
        }
        if (bytes[1] == endpoint && size >= endpointSize && usable) add(bytes, endpoints);
    }
    return isComplete(endpoints);
}

}  // namespace usb
