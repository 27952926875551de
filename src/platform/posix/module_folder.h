/// For a program that carries this library within, and whose file does not lie where the libraries do.
#pragma once

namespace platform {

/// From now on loadBesideThisLibrary() loads from this folder.
/// @param folder absolute; one whose name is too long for the system changes nothing.
void loadFromFolder(const char* folder);

}  // namespace platform
