#include "control_folder.h"

namespace tool {

/// Programs and libraries lie in one folder here, where the library looks anyhow.
void useControlLibrary(const std::string&) {}

}  // namespace tool
