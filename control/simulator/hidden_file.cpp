#include "hidden_file.h"

#include <fstream>
#include <random>
#include <stdexcept>
#include <string>

#include "system.h"

namespace simulator {
namespace {

std::string unusedName() {
    std::random_device random;
    return ".page-" + std::to_string(random()) + "-" + std::to_string(random());
}

void removeFile(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

}  // namespace

HiddenFile::HiddenFile(const std::filesystem::path& folder, const void* bytes, size_t size)
    : path_(folder / unusedName()) {
    std::ofstream file(path_, std::ios::binary);
    file.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    file.close();
    if (file) return;
    removeFile(path_);
    throw std::runtime_error("the output folder takes no file, or not all of it");
}

HiddenFile::~HiddenFile() {
    removeFile(path_);
}

bool HiddenFile::moveToFree(const std::filesystem::path& name) const {
    return moveToFreeName(path_, name);
}

void HiddenFile::moveOver(const std::filesystem::path& name) const {
    std::filesystem::rename(path_, name);
}

}  // namespace simulator
