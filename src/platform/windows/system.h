/// The system's header without the parts that nobody here needs.
#pragma once

#define WIN32_LEAN_AND_MEAN
#define NOMINMAX 1  // as the C++ library has it
#include <windows.h>

namespace platform {

/// The image that this code is part of: the library, or the executable that it is linked with.
/// @param flags 0 takes a reference that keeps the image loaded.
inline HMODULE ownImage(DWORD flags) {
    HMODULE image = nullptr;
    const auto* address = reinterpret_cast<const wchar_t*>(&ownImage);
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | flags, address, &image);
    return image;
}

}  // namespace platform
