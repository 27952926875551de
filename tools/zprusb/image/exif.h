/// The orientation that a camera notes in a JPEG file.
#pragma once

#include "picture.h"

namespace tool {

/// @param file the content of a picture file of any kind.
/// @return what turns the stored picture upright; no turn when the file says nothing, or nothing sensible.
Turn turnOfExif(ByteView file);

}  // namespace tool
