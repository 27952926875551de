/// What `zprusb info` can show: one kind for each information tag.
#pragma once

#include <span>
#include <string>

#include "view.h"

namespace tool {

struct InfoKind {
    uint16_t tag;
    std::string word;     // on the command line and in JSON
    uint32_t size;        // of the record, in bytes
    const char* content;  // in words
    View (*view)(ByteView record);
};

/// All kinds, in the order of the tags.
std::span<const InfoKind> infoKinds();

/// @param tag one of ::zprusb_infoTag.
const InfoKind& infoKind(uint16_t tag);

}  // namespace tool
