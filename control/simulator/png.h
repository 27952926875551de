/// PNG pictures.
#pragma once

#include "protocol.h"

namespace simulator {

/// @param pixels 8-bit RGB, row by row without gaps.
Bytes encodePng(ByteView pixels, uint32_t width, uint32_t height);

}  // namespace simulator
