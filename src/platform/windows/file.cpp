#include "platform/file.h"

#include "system.h"

namespace platform {

namespace {

HANDLE handleOf(intptr_t handle) {
    return reinterpret_cast<HANDLE>(handle);
}

intptr_t openRegularFile(const char* path, DWORD access, DWORD sharing, DWORD disposition) {
    const HANDLE handle =
        CreateFileA(path, access, sharing, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE || GetFileType(handle) == FILE_TYPE_DISK) {
        return reinterpret_cast<intptr_t>(handle);
    }
    CloseHandle(handle);
    return reinterpret_cast<intptr_t>(INVALID_HANDLE_VALUE);
}

}  // namespace

bool File::open(const char* path) {
    close();
    handle_ = openRegularFile(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    return isOpen();
}

bool File::create(const char* path) {
    close();
    handle_ = openRegularFile(path, GENERIC_WRITE, 0, CREATE_ALWAYS);
    return isOpen();
}

bool File::size(uint32_t& bytes) const {
    LARGE_INTEGER size{};
    if (!GetFileSizeEx(handleOf(handle_), &size) || size.QuadPart > UINT32_MAX) return false;
    bytes = static_cast<uint32_t>(size.QuadPart);
    return true;
}

bool File::rewind() {
    return SetFilePointer(handleOf(handle_), 0, nullptr, FILE_BEGIN) == 0;
}

bool File::read(uint8_t* bytes, uint32_t capacity, uint32_t& count) {
    DWORD received = 0;
    const bool success = ReadFile(handleOf(handle_), bytes, capacity, &received, nullptr);
    count = received;
    return success;
}

bool File::write(const uint8_t* bytes, uint32_t length) {
    DWORD written = 0;
    return WriteFile(handleOf(handle_), bytes, length, &written, nullptr) && written == length;
}

void File::close() {
    if (isOpen()) CloseHandle(handleOf(handle_));
    handle_ = none;
}

std::FILE* appendToFile(const char* path) {
    return std::fopen(path, "a");
}

bool fileExists(const char* path) {
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace platform
