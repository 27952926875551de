/// Whole files, named by paths in UTF-8.
#pragma once

#include "bytes.h"
#include "failure.h"

namespace tool {

/// @throws UnusableFile also for a file of more than `largest` bytes, which must be whole mebibytes.
Bytes readFile(const std::string& path, uint64_t largest);

/// Standard input to its end. @throws UnusableFile as readFile() does.
Bytes readInput(uint64_t largest);

/// @throws UnusableFile
void writeFile(const std::string& path, ByteView content);

}  // namespace tool
