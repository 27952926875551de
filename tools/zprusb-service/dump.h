#pragma once

#include "view.h"

namespace tool {

/// A number of two hexadecimal digits or more, such as 0x60.
std::string hexadecimal(unsigned number);

/// Bytes by their addresses, 16 a line, with the printable characters at the right.
View dumpOf(unsigned address, ByteView bytes);

}  // namespace tool
