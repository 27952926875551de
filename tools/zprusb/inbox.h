/// A folder into which others put pictures to print.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace platform {
struct NamedMutex;
}

namespace tool {

/// One picture at a time is taken into the folder `printing` below, so that it is printed once only. When a
/// program ends there, the next one goes by the picture's name: one that was not started comes back, and one
/// that was goes to `failed`, as nobody knows what became of it.
class Inbox {
public:
    static constexpr const char* printed = "printed";
    static constexpr const char* failed = "failed";

    struct Arrival {
        std::string name;
        std::string path;
        bool settled;  // for so long that it won't change any more
    };

    /// @param folder in UTF-8.
    /// @throws UnusableFile when it is no folder, the folders below can't be made, or it is watched already.
    explicit Inbox(const std::string& folder);
    ~Inbox();
    Inbox(const Inbox&) = delete;
    Inbox& operator=(const Inbox&) = delete;

    /// A picture that seems to be written completely: it did not change for a second. The functions below are
    /// for that one. @throws UnusableFile when the folder is gone.
    std::optional<Arrival> next();

    /// The picture is not offered again before it has changed, or has settled.
    void postpone();

    /// @return whether it could be, as it was when next() looked at it.
    bool take();

    /// Undoes take(), if the picture was taken.
    void giveBack();

    /// From now on a part of the picture may be on paper. @throws Refusal
    void start();

    /// Moves the picture below the folder `where`, under another name if there is one of that name.
    void put(const char* where);

private:
    struct Look {
        uintmax_t size;
        std::filesystem::file_time_type changed;
        std::chrono::steady_clock::time_point since;
        bool postponed;

        bool sees(const Look& other) const { return size == other.size && changed == other.changed; }
    };

    static Look lookAt(const std::filesystem::path& file);
    void bringBackOrGiveUp();
    void moveTo(const std::filesystem::path& folder);

    const std::filesystem::path folder_;
    platform::NamedMutex* const watching_;
    std::map<std::string, Look> looks_;
    std::string name_;             // of the picture that was offered last
    std::filesystem::path where_;  // it lies now
};

}  // namespace tool
