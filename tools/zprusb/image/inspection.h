/// What a picture file says of itself, found before any decoder sees it.
#pragma once

#include <string>

#include "picture.h"

namespace tool {

struct Inspection {
    enum class Kind { png, jpeg };

    Kind kind;
    Extent size{};                 // as stored; 0 x 0 when the file does not tell
    Turn turn = noTurn;            // upright
    Bytes profile{};               // ICC; empty for none, which means sRGB
    unsigned scans = 0;            // of a JPEG file; a progressive one is refined by each
    bool isUntransformed = false;  // a JPEG file of RGB or inks as they are, not of brightness and differences
    std::string damage{};          // what is wrong, as the end of a sentence; empty for nothing
};

/// @return none when it is neither a PNG nor a JPEG file.
std::optional<Inspection> inspect(ByteView file);

Inspection inspectPng(ByteView file);
Inspection inspectJpeg(ByteView file);

constexpr const char* cutOff = "ends in the middle of the picture.";
constexpr const char* badProfile = "has a damaged colour profile.";

}  // namespace tool
