/// Writing a page as a picture.
#pragma once

#include "image/picture.h"

namespace tool {

/// The bytes of a PNG file. @throws std::bad_alloc
Bytes pngOf(const Picture& picture);

}  // namespace tool
