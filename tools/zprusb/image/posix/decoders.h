/// The decoders of the two kinds of files.
#pragma once

#include "decoder.h"

namespace tool {

std::unique_ptr<Decoder> makePngDecoder(ByteView file, bool force);
std::unique_ptr<Decoder> makeJpegDecoder(ByteView file);

}  // namespace tool
