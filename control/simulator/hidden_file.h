/// A file that nobody sees until it is whole.
#pragma once

#include <cstddef>
#include <filesystem>

namespace simulator {

class HiddenFile {
public:
    /// @throws std::runtime_error when the folder does not take all bytes; nothing is left of them then.
    HiddenFile(const std::filesystem::path& folder, const void* bytes, size_t size);
    ~HiddenFile();  // removes what was not moved
    HiddenFile(const HiddenFile&) = delete;
    HiddenFile& operator=(const HiddenFile&) = delete;

    /// @param name in the same folder.
    /// @return false when the name is taken.
    bool moveToFree(const std::filesystem::path& name) const;

    /// Replaces the file that has the name.
    void moveOver(const std::filesystem::path& name) const;

private:
    const std::filesystem::path path_;
};

}  // namespace simulator
