#include "control_folder.h"

#include "module_folder.h"

namespace tool {

void useControlLibrary(const std::string& file) {
    platform::loadFromFolder(file.substr(0, file.rfind('/')).c_str());
}

}  // namespace tool
