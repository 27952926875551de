/// Reading picture files.
#pragma once

#include <string>

#include "picture_reader.h"

namespace tool {

/// Opens a PNG or JPEG file.
/// @param path in UTF-8; "-" for standard input.
/// @throws UnusableFile with a sentence that says what is wrong with the file.
PictureReader openPicture(const std::string& path, const Reading& reading);

/// Reads the printer's profile. @throws UnusableFile also when it is none for RGB.
Bytes loadProfile(const std::string& path);

}  // namespace tool
