#include "library_file.h"

#include <dlfcn.h>
#include <link.h>
#include <zprusb.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <memory>

namespace tool {
namespace {

namespace fs = std::filesystem;

/// Where the system looks for the libraries of this program, in this order.
std::vector<fs::path> libraryFolders() {
    std::vector<fs::path> folders;
    void* program = dlopen(nullptr, RTLD_LAZY);
    Dl_serinfo size{};
    if (dlinfo(program, RTLD_DI_SERINFOSIZE, &size) != 0) return folders;
    const auto room = std::make_unique<std::max_align_t[]>(size.dls_size / sizeof(std::max_align_t) + 1);
    auto* found = reinterpret_cast<Dl_serinfo*>(room.get());
    *found = size;
    if (dlinfo(program, RTLD_DI_SERINFO, found) != 0) return folders;
    for (unsigned i = 0; i < found->dls_cnt; ++i) folders.emplace_back(found->dls_serpath[i].dls_name);
    return folders;
}

bool isWithinThisProgram(const Dl_info& library) {
    Dl_info program;
    return dladdr(reinterpret_cast<void*>(&fileOfLibrary), &program) != 0 &&
           program.dli_fbase == library.dli_fbase;
}

bool libraryIsWithinThisProgram() {
    Dl_info library;
    return dladdr(reinterpret_cast<void*>(&zprusb_open), &library) != 0 && isWithinThisProgram(library);
}

}  // namespace

std::string fileOfLibrary() {
    Dl_info library;
    char file[PATH_MAX] = "";
    if (dladdr(reinterpret_cast<void*>(&zprusb_open), &library) == 0) return "";
    const char* known = isWithinThisProgram(library) ? "/proc/self/exe" : library.dli_fname;
    return realpath(known, file) == nullptr ? library.dli_fname : file;
}

std::vector<std::string> controlFolders() {
    std::error_code ignored;
    std::vector<std::string> folders;
    if (libraryIsWithinThisProgram()) {
        for (const fs::path& folder : libraryFolders()) {
            // A link to the library leads to the folder of the file.
            const fs::path file = fs::canonical(folder / libraryFileName("RQX5820usb"), ignored);
            if (file.empty()) continue;
            folders.push_back(file.parent_path());
            break;
        }
    }
    folders.push_back(fs::path(fileOfLibrary()).parent_path());
    return folders;
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
