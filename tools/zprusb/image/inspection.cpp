#include "inspection.h"

#include "fields.h"

namespace tool {

std::optional<Inspection> inspect(ByteView file) {
    if (startsWith(file, "\x89PNG\r\n\x1A\n")) return inspectPng(file);
    if (startsWith(file, "\xFF\xD8\xFF")) return inspectJpeg(file);
    return std::nullopt;
}

}  // namespace tool
