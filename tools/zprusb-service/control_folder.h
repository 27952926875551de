#pragma once

#include <string>

namespace tool {

/// Makes the library within this program load the control library from this file.
void useControlLibrary(const std::string& file);

}  // namespace tool
