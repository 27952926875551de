#include "device_event.h"

#include <cstring>

namespace platform {

namespace {

/// @param text with a zero byte before it as well: the one that ends what precedes it.
template <size_t size>
bool has(std::string_view notification, const char (&text)[size]) {
    return memmem(notification.data(), notification.size(), text, size) != nullptr;
}

}  // namespace

bool tellsOfUsbDevice(std::string_view notification) {
    return has(notification, "\0SUBSYSTEM=usb") && has(notification, "\0DEVTYPE=usb_device") &&
           (has(notification, "\0ACTION=add") || has(notification, "\0ACTION=remove"));
}

}  // namespace platform
