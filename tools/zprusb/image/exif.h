/// The orientation that a camera notes in a picture file.
#pragma once

#include "picture.h"

namespace tool {

/// @param exif the data, from the mark of their byte order on.
/// @return what turns the stored picture upright; no turn when they say nothing, or nothing sensible.
Turn turnOfExif(ByteView exif);

}  // namespace tool
