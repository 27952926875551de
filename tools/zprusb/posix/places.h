/// Places that the system itself decides about, below a folder of choice.
#pragma once

#include <filesystem>
#include <vector>

#include "surroundings.h"

namespace tool {

std::vector<Sight> lockFoldersBelow(const std::filesystem::path& root);
std::vector<Sight> usbDevicesBelow(const std::filesystem::path& root);

}  // namespace tool
