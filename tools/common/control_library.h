/// The control library beside the library, looked at directly: for what the library does not tell about a
/// printer, and before the library is opened.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

/// Where the library looks for it: its file's path, in UTF-8.
std::string controlLibraryFile();

/// The names of the functions that a control library has to have, and that this one has not.
std::vector<std::string> functionsLackingIn(void* library);

/// Which control library it is, in words: the maker's has nothing that tells.
std::string kindOf(void* library);

/// What the control library for real printers tells of each: where it is, whether this process may use it, and
/// who has its interface. Others tell nothing.
std::vector<std::string> interfacesSeenBy(void* library);

struct Device {
    uint64_t number;
    std::string path;  // the system's name for it

    bool isPrinter() const;
};

/// A printer's own number, as its device path tells it; empty when that has none.
std::string serialIn(const std::string& path);

/// The serial of a printer that the library has opened; empty when it is not to be had.
std::string serialOf(uint8_t printer);

/// What the control library has, printers or not. Opens each for a moment, so the library must not be open.
/// @return nothing also when there is no control library.
std::vector<Device> connectedDevices();

enum class Use { none, inUse, leftByKilled, unknown };

/// Whether a program is using the printer. This program must not be.
Use useOf(const Device& device);

}  // namespace tool
