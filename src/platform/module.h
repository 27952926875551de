/// Libraries that are loaded at run time from the folder of this library's own file. Linked statically, that
/// file is the executable.
#pragma once

namespace platform {

using ModuleHandle = void*;

/// Loads the library `name` from the folder of this library's own file, whatever characters the folder's name
/// has. What that library needs in turn is found where the system's loader looks, on Windows beside it first;
/// never in the current directory.
/// @param name without the system's prefix and suffix: "Name" is Name.dll on Windows and libName.so on Linux.
/// @return null when the own folder can't be found out, or the file is missing or can't be loaded.
ModuleHandle loadBesideThisLibrary(const char* name);

/// @return the function's address, to be cast to its type; null when the module has no such name.
void* findFunction(ModuleHandle module, const char* name);

void unloadModule(ModuleHandle module);

}  // namespace platform
