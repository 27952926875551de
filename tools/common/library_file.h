/// Libraries and their files.
#pragma once

#include <string>
#include <vector>

namespace tool {

/// The file of the library RQX5820usb that this program calls: the program itself where it carries it within.
std::string fileOfLibrary();

/// The folders where the library's control library is looked for: beside the library; by a program that carries
/// it within, beside the one that is installed, and else beside the program. In UTF-8.
std::vector<std::string> controlFolders();

/// The file name that the system gives a library: libNAME.so or NAME.dll.
std::string libraryFileName(const std::string& name);

/// Loads a library for the rest of the program's life.
/// @param error receives the system's own words.
/// @return null when it can't be loaded.
void* loadLibrary(const std::string& path, std::string& error);

/// @return null when the library has no such function.
void* findSymbol(void* library, const char* name);

}  // namespace tool
