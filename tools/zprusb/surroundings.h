/// What the system tells about the things around the library, for the doctor.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// Something that was looked at.
struct Sight {
    std::string found;
    std::string remedy{};  // empty when it is as it should be
};

/// What is seen in a control library's file without loading it.
Sight fileOfControlLibrary(const std::string& path);

/// Why the system does not load a library whose file looks right: what it needs and what is missing of that, as
/// far as the system tells.
/// @param error the system's own words.
Sight loadingFailure(const std::string& path, const std::string& error);

/// The folders of the files that processes reserve printers by, where they are files.
std::vector<Sight> lockFolders();

/// The devices of the printers' kind that the system sees, and whether this user may use them.
std::vector<Sight> usbDevices();

/// Who has reserved the printer of this device path, in words.
std::string userOf(const std::string& devicePath);

}  // namespace tool
