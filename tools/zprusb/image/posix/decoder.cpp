#include "decoder.h"

#include "decoders.h"

namespace tool {

std::unique_ptr<Decoder> makeDecoder(ByteView file, const Inspection& inspection, bool force) {
    return inspection.kind == Inspection::Kind::png ? makePngDecoder(file, force) : makeJpegDecoder(file);
}

}  // namespace tool
