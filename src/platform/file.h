/// Files: firmware that is read, images that are written, traces that grow.
#pragma once

#include <cstdint>
#include <cstdio>

namespace platform {

/// A regular file, closed at the end of this object's life. Devices, pipes and folders can't be opened. Paths
/// end with a zero byte; on Linux their backslashes count as slashes.
class File {
public:
    File() = default;
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// Opens an existing file for reading, which others may read at the same time.
    bool open(const char* path);

    /// Makes a file for writing, or empties an existing one. Fails without a change while anybody has it open
    /// through this class.
    bool create(const char* path);

    bool isOpen() const { return handle_ != none; }

    /// Fails for a file of 4 GiB and more.
    bool size(uint32_t& bytes) const;
    bool rewind();

    /// @param count receives the number of bytes that were read, 0 at the end.
    bool read(uint8_t* bytes, uint32_t capacity, uint32_t& count);

    /// @return whether all bytes were written.
    bool write(const uint8_t* bytes, uint32_t length);

    void close();

private:
    static constexpr intptr_t none = -1;
    intptr_t handle_ = none;
};

/// A text file that is written at its end, made if it is missing; null on failure.
std::FILE* appendToFile(const char* path);

bool fileExists(const char* path);

}  // namespace platform
