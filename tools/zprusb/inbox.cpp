#include "inbox.h"

#include <algorithm>

#include "failure.h"
#include "file.h"
#include "platform/named_mutex.h"
#include "program.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

constexpr const char* printing = "printing";
constexpr const char* startedMark = ".started";
constexpr auto writtenAfter = std::chrono::seconds(1);
constexpr auto settledAfter = std::chrono::seconds(5);

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

/// The same for every way to write the folder's path, and without backslashes, which Windows has a use for.
platform::NamedMutex* openWatching(const fs::path& folder) {
    std::error_code error;
    std::string name = "zprusb print --watch " + textOf(fs::canonical(folder, error));
    std::ranges::replace(name, '\\', '/');
    return platform::openNamedMutex(name.c_str());
}

}  // namespace

Inbox::Inbox(const std::string& folder) : folder_(pathOf(folder)), watching_(openWatching(folder_)) {
    const platform::MutexWait wait = platform::waitForNamedMutex(watching_, 0);
    std::error_code error;
    if (!fs::is_directory(folder_, error)) refuseFile(folder, "is not a folder.");
    if (wait == platform::MutexWait::timedOut) refuseFile(folder, "is being watched by another program.");
    for (const char* below : {printed, failed, printing}) {
        fs::create_directory(folder_ / below, error);
        if (!fs::is_directory(folder_ / below, error)) refuseFile(folder, "can't be written.");
    }
    bringBackOrGiveUp();
}

Inbox::~Inbox() {
    platform::closeNamedMutex(watching_);
}

void Inbox::bringBackOrGiveUp() {
    for (const auto& left : fs::directory_iterator(folder_ / printing)) {
        where_ = left.path();
        const bool started = where_.extension() == startedMark;
        name_ = textOf(started ? where_.stem() : where_.filename());
        if (!started) {
            giveBack();
        } else {
            put(failed);
            complain("'" + name_ +
                     "' was being printed when a former program ended, and lies in 'failed' now.");
        }
    }
}

Inbox::Look Inbox::lookAt(const fs::path& file) {
    std::error_code error;
    return {fs::file_size(file, error), fs::last_write_time(file, error), std::chrono::steady_clock::now(),
            false};
}

std::optional<Inbox::Arrival> Inbox::next() {
    std::error_code error;
    std::map<std::string, Look> looks;
    std::optional<Arrival> found;
    const fs::directory_iterator entries(folder_, error);
    if (error) refuseFile(textOf(folder_), "can't be read any more.");
    for (const auto& entry : entries) {
        if (!entry.is_regular_file(error) || !isPicture(entry.path())) continue;
        const std::string name = textOf(entry.path().filename());
        Look look = lookAt(entry.path());
        const auto age = [&look, now = look.since] { return now - look.since; };
        const auto before = looks_.find(name);
        if (before != looks_.end() && before->second.sees(look)) look = before->second;
        const bool isDue = age() >= (look.postponed ? settledAfter : writtenAfter);
        if (isDue && (!found || name < found->name))
            found = Arrival{name, textOf(entry.path()), age() >= settledAfter};
        looks.emplace(name, look);
    }
    looks_ = std::move(looks);
    if (found) {
        name_ = found->name;
        where_ = folder_ / pathOf(name_);
    }
    return found;
}

void Inbox::postpone() {
    looks_[name_].postponed = true;
}

bool Inbox::take() {
    const Look offered = looks_[name_];
    looks_.erase(name_);
    std::error_code error;
    const fs::path target = folder_ / printing / pathOf(name_);
    fs::rename(where_, target, error);
    if (error) return false;
    where_ = target;
    if (lookAt(where_).sees(offered)) return true;
    giveBack();
    return false;
}

void Inbox::giveBack() {
    moveTo(folder_);
}

void Inbox::start() {
    fs::path target = where_;
    target += startedMark;
    std::error_code error;
    fs::rename(where_, target, error);
    if (error) throw Refusal("'" + name_ + "' can't be moved.");
    where_ = target;
}

void Inbox::put(const char* where) {
    std::error_code error;
    fs::create_directory(folder_ / where, error);
    moveTo(folder_ / where);
}

void Inbox::moveTo(const fs::path& folder) {
    const fs::path wanted = pathOf(name_);
    fs::path target = folder / wanted;
    if (where_ == target) return;
    std::error_code error;
    for (int number = 2; fs::exists(target, error); ++number)
        target.replace_filename(wanted.stem().u8string() + u8"-" + fs::path(std::to_string(number)).u8string() +
                                wanted.extension().u8string());
    fs::rename(where_, target, error);
    if (error) complain("'" + textOf(where_) + "' can't be moved to '" + textOf(folder) + "'.");
}

}  // namespace tool
