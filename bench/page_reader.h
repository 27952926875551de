/// The reading end of both pipes that the benchmark compares.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

constexpr uint32_t pageWidth = 15240;  // 1/100 mm: a page of 6 x 4 inch, 1800 x 1200 dots
constexpr uint32_t pageLength = 10160;
constexpr size_t pageSize = size_t{1800} * 1200 * 3;

/// Reads `size` bytes and forgets them.
/// @return false when the pipe ended before.
inline bool drain(int pipe, size_t size) {
    std::vector<uint8_t> buffer(64 * 1024);
    while (size > 0) {
        const ssize_t count = read(pipe, buffer.data(), size < buffer.size() ? size : buffer.size());
        if (count <= 0) return false;
        size -= static_cast<size_t>(count);
    }
    return true;
}

}  // namespace bench
