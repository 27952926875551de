#include "platform/module.h"

#include "module_folder.h"

#include <dlfcn.h>
#include <sys/auxv.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace platform {

namespace {

char ownFolder[PATH_MAX];  // absolute, without a slash at its end; empty when it can't be found out

bool isPartOfExecutable(const Dl_info& own) {
    Dl_info program;
    // The kernel tells where the program headers are that belong to the executable.
    auto* headers = reinterpret_cast<void*>(getauxval(AT_PHDR));
    return dladdr(headers, &program) != 0 && program.dli_fbase == own.dli_fbase;
}

// Runs when the image is loaded: the path that it was loaded by may be relative, and is right only until the
// program changes its current directory.
[[gnu::constructor]] void findOwnFolder() {
    Dl_info own;
    if (dladdr(ownFolder, &own) == 0) return;
    // For an executable the loader only knows what it was called by, which need not be a path.
    const char* file = isPartOfExecutable(own) ? "/proc/self/exe" : own.dli_fname;
    char* slash = realpath(file, ownFolder) == nullptr ? ownFolder : std::strrchr(ownFolder, '/');
    *slash = '\0';
}

}  // namespace

void loadFromFolder(const char* folder) {
    const size_t size = std::strlen(folder) + 1;
    if (size <= sizeof ownFolder) std::memcpy(ownFolder, folder, size);
}

ModuleHandle loadBesideThisLibrary(const char* name) {
    char path[PATH_MAX];
    const int length = std::snprintf(path, sizeof path, "%s/lib%s.so", ownFolder, name);
    if (ownFolder[0] == '\0' || length >= PATH_MAX) return nullptr;
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void* findFunction(ModuleHandle module, const char* name) {
    return dlsym(module, name);
}

void unloadModule(ModuleHandle module) {
    dlclose(module);
}

}  // namespace platform
