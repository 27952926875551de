#include "inbox.h"

#include <chrono>

#include "file.h"
#include "program.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* printing = "printing";
constexpr auto settled = std::chrono::seconds(1);

fs::path pathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

std::string textOf(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

bool isPicture(const fs::path& file) {
    std::string ending = textOf(file.extension());
    for (char& letter : ending)
        letter = static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter);
    return ending == ".png" || ending == ".jpg" || ending == ".jpeg";
}

}  // namespace

Inbox::Inbox(const std::string& folder) : folder_(pathOf(folder)) {
    std::error_code error;
    if (!fs::is_directory(folder_, error)) refuseFile(folder, "is not a folder.");
    for (const char* below : {printed, failed, printing}) {
        fs::create_directory(folder_ / below, error);
        if (!fs::is_directory(folder_ / below, error)) refuseFile(folder, "can't be written.");
    }
    for (const auto& left : fs::directory_iterator(folder_ / printing, error)) {
        const std::string name = textOf(left.path().filename());
        put(name, failed);
        complain("'" + name + "' was being printed when a former program ended, and lies in 'failed' now.");
    }
}

std::optional<std::string> Inbox::next() {
    std::error_code error;
    std::map<std::string, Look> looks;
    std::optional<std::string> found;
    const auto now = fs::file_time_type::clock::now();
    for (const auto& entry : fs::directory_iterator(folder_, error)) {
        if (!entry.is_regular_file(error) || !isPicture(entry.path())) continue;
        const std::string name = textOf(entry.path().filename());
        Look look = {entry.file_size(error), entry.last_write_time(error), now};
        const auto before = looks_.find(name);
        const bool same = before != looks_.end() && before->second.size == look.size &&
                          before->second.changed == look.changed;
        if (same) look.since = before->second.since;
        if (now - look.since >= settled && (!found || name < *found)) found = name;
        looks.emplace(name, look);
    }
    looks_ = std::move(looks);
    return found;
}

std::string Inbox::take(const std::string& name) {
    std::error_code error;
    fs::rename(folder_ / pathOf(name), folder_ / printing / pathOf(name), error);
    if (error) refuseFile(name, "can't be moved.");
    looks_.erase(name);
    return textOf(folder_ / printing / pathOf(name));
}

void Inbox::put(const std::string& name, const char* where) {
    const fs::path wanted = pathOf(name);
    fs::path target = folder_ / where / wanted;
    std::error_code error;
    for (int number = 2; fs::exists(target, error); ++number)
        target.replace_filename(wanted.stem().u8string() + u8"-" + fs::path(std::to_string(number)).u8string() +
                                wanted.extension().u8string());
    fs::rename(folder_ / printing / wanted, target, error);
    if (error) fs::rename(folder_ / wanted, target, error);  // it was never taken
}

}  // namespace tool
