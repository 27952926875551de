#include "descriptors.h"

namespace usb_test {
namespace {

enum Type : uint8_t { device = 1, configuration = 2, text = 3 };

void append16(Bytes& bytes, unsigned value) {
    bytes.push_back(static_cast<uint8_t>(value));
    bytes.push_back(static_cast<uint8_t>(value >> 8));
}

Bytes deviceDescriptor() {
    Bytes bytes = {18, device, 0, 2, 0, 0, 0, 64};
    append16(bytes, vendor);
    append16(bytes, product);
    bytes.insert(bytes.end(), {0, 1, 1, 2, 3, 1});
    return bytes;
}

Bytes configurationDescriptor(const Kind& kind) {
    Bytes bytes = {9, configuration, 32, 0, 1, 1, 0, 0xC0, 1, 9, 4, 0, 0, 2};
    bytes.insert(bytes.end(), {kind.interfaceClass(), kind.interfaceSubclass(), kind.interfaceProtocol(), 0});
    for (const uint8_t endpoint : {outEndpoint, inEndpoint}) {
        bytes.insert(bytes.end(), {7, 5, endpoint, 2});
        append16(bytes, kind.packetSize());
        bytes.push_back(0);
    }
    return bytes;
}

Bytes textDescriptor(const std::string& letters) {
    Bytes bytes = {static_cast<uint8_t>(2 + 2 * letters.size()), text};
    for (const char letter : letters) append16(bytes, static_cast<uint8_t>(letter));
    return bytes;
}

}  // namespace

Bytes descriptor(const Kind& kind, uint8_t type, uint8_t index) {
    if (type == device) return deviceDescriptor();
    if (type == configuration && index == 0) return configurationDescriptor(kind);
    if (type != text || index > 3) return {};
    if (index == 0) return {4, text, 9, 4};  // in English
    return textDescriptor(index == 1 ? "SIMULATED" : index == 2 ? "RQX5820 SIMULATED" : kind.serial);
}

}  // namespace usb_test
