#include "control_folder.h"

#include <dlfcn.h>
#include <link.h>

#include <filesystem>
#include <memory>
#include <optional>

#include "module_folder.h"

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

bool holds(const fs::path& folder, const char* file) {
    std::error_code ignored;
    return fs::exists(folder / file, ignored);
}

}  // namespace

std::vector<std::string> chooseControlFolder() {
    std::error_code ignored;
    std::vector<fs::path> candidates;
    for (const fs::path& folder : libraryFolders()) {
        if (!holds(folder, "libRQX5820usb.so")) continue;
        // A link to the library leads to the folder of the file.
        candidates.push_back(fs::canonical(folder / "libRQX5820usb.so", ignored).parent_path());
        break;
    }
    candidates.push_back(fs::canonical("/proc/self/exe", ignored).parent_path());
    std::vector<std::string> names;
    for (const fs::path& folder : candidates) {
        names.push_back(folder.string());
        if (!holds(folder, "libRQX5820UsbCtrl.so")) continue;
        platform::loadFromFolder(folder.c_str());
        break;
    }
    return names;
}

}  // namespace tool
