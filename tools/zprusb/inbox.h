/// A folder into which others put pictures to print.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

namespace tool {

/// A picture that is being printed lies in the folder `printing` below, so that it is printed once only: what a
/// former program has left there is moved to `failed`, as nobody knows what became of it.
class Inbox {
public:
    static constexpr const char* printed = "printed";
    static constexpr const char* failed = "failed";

    /// @param folder in UTF-8.
    /// @throws UnusableFile when it is no folder, or the folders below can't be made.
    explicit Inbox(const std::string& folder);

    /// A picture that has been written completely: it did not change for a second.
    std::optional<std::string> next();

    /// @return the path of the picture, which is being printed from now on. @throws UnusableFile
    std::string take(const std::string& name);

    /// Moves the picture below the folder `where`, under another name if there is one of that name.
    void put(const std::string& name, const char* where);

private:
    struct Look {
        uintmax_t size;
        std::filesystem::file_time_type changed;
        std::filesystem::file_time_type::clock::time_point since;
    };

    const std::filesystem::path folder_;
    std::map<std::string, Look> looks_;
};

}  // namespace tool
