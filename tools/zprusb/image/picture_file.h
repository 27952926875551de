/// Reading picture files.
#pragma once

#include <string>

#include "picture.h"

namespace tool {

/// Reads a PNG or JPEG file, turned as its EXIF orientation says; transparent parts become white.
/// @param path in UTF-8; "-" for standard input.
/// @throws UnusableFile with a sentence that says what is wrong with the file.
Picture loadPicture(const std::string& path);

}  // namespace tool
