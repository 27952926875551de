#pragma once

#include <string>
#include <vector>

namespace tool {

/// Makes the library within this program look for the control library where `zprusb` does: beside the library
/// of the installation. When it isn't there, beside this program.
/// @return the folders that were looked into, in UTF-8.
std::vector<std::string> chooseControlFolder();

}  // namespace tool
