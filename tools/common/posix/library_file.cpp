#include <dlfcn.h>
#include <zprusb.h>

#include <climits>
#include <cstdlib>

#include "library_file.h"

namespace tool {

std::string fileOfLibrary() {
    Dl_info library;
    char file[PATH_MAX] = "";
    if (dladdr(reinterpret_cast<void*>(&zprusb_open), &library) == 0) return "";
    Dl_info program;
    const bool within = dladdr(reinterpret_cast<void*>(&fileOfLibrary), &program) != 0 &&
                        program.dli_fbase == library.dli_fbase;
    return realpath(within ? "/proc/self/exe" : library.dli_fname, file) == nullptr ? library.dli_fname : file;
}

std::string libraryFileName(const std::string& name) {
    return "lib" + name + ".so";
}

void* loadLibrary(const std::string& path, std::string& error) {
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) error = dlerror();
    return library;
}

void* findSymbol(void* library, const char* name) {
    return dlsym(library, name);
}

}  // namespace tool
