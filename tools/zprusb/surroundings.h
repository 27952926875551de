/// What the system tells about the things around the library, for the doctor.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// What keeps a library's file from being loaded, as the end of a sentence: missing, no library, another
/// machine's.
/// @return empty when nothing is seen in the file.
std::string faultOfLibraryFile(const std::string& path);

/// The libraries that a library needs and that are not found, as far as the system tells.
std::string missingNeedsOf(const std::string& path);

struct LockFolder {
    std::string path;  // empty where reservations are no files
    bool writable;
};

LockFolder lockFolder();

struct UsbDevice {
    std::string path;
    bool permitted;
};

/// The devices of the printers' kind that the system sees, as far as it tells.
std::vector<UsbDevice> usbPrinters();

/// Who has reserved the printer of this device path, in words.
std::string userOf(const std::string& devicePath);

}  // namespace tool
