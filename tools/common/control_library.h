/// The control library beside the library, looked at directly: for what the library does not tell about a
/// printer, and before the library is opened.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

/// Where the library looks for it: its file's path, in UTF-8.
std::string controlLibraryFile();

struct Device {
    uint64_t number;
    std::string path;  // the system's name for it
};

/// A printer's own number, as its device path tells it; empty when that has none.
std::string serialIn(const std::string& path);

/// The serial of a printer that the library has opened; empty when it is not to be had.
std::string serialOf(uint8_t printer);

/// Opens each printer for a moment, so the library must not be open.
/// @return nothing also when there is no control library.
std::vector<Device> connectedPrinters();

enum class Use { none, inUse, leftByKilled, unknown };

/// Whether a program is using the printer. This program must not be.
Use useOf(const Device& device);

}  // namespace tool
