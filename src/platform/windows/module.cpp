#include "platform/module.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <iterator>

#include "system.h"

namespace platform {

namespace {

constexpr wchar_t suffix[] = L".dll";
constexpr DWORD longestPath = 32768;  // characters; the system's own limit

// The path of this image's file with `spare` characters of room behind it, to be freed; null when the system
// doesn't tell it.
wchar_t* ownPath(size_t spare) {
    const HMODULE image = ownImage(GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT);
    for (DWORD capacity = MAX_PATH; image != nullptr && capacity <= 2 * longestPath; capacity *= 2) {
        auto* path = static_cast<wchar_t*>(std::malloc((capacity + spare) * sizeof(wchar_t)));
        if (path == nullptr) return nullptr;
        const DWORD length = GetModuleFileNameW(image, path, capacity);
        if (length > 0 && length < capacity) return path;
        std::free(path);
        if (length == 0) return nullptr;
    }
    return nullptr;
}

// The names of modules are plain ASCII.
void replaceFileName(wchar_t* path, const char* name) {
    wchar_t* end = std::wcsrchr(path, L'\\');
    end = end == nullptr ? path : end + 1;
    while (*name != '\0') *end++ = static_cast<unsigned char>(*name++);
    std::wcscpy(end, suffix);
}

}  // namespace

ModuleHandle loadBesideThisLibrary(const char* name) {
    wchar_t* path = ownPath(std::strlen(name) + std::size(suffix));
    if (path == nullptr) return nullptr;
    replaceFileName(path, name);
    const HMODULE module =
        LoadLibraryExW(path, nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS);
    std::free(path);
    return module;
}

void* findFunction(ModuleHandle module, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void unloadModule(ModuleHandle module) {
    FreeLibrary(static_cast<HMODULE>(module));
}

}  // namespace platform
