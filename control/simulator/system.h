/// What the simulator needs of the operating system besides pipes.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <thread>

namespace simulator {

/// Starts a thread that takes no signal of the process, so that a broken pipe is no more than a failed write.
std::thread startThread(std::function<void()> body);

/// @return the path in the environment variable, or none when it is missing or empty.
std::optional<std::filesystem::path> pathFromEnvironment(const char* variable);

/// Gives a file another name in the same folder in one step.
/// @return false when the new name is taken.
/// @throws std::system_error when the system refuses for any other reason.
bool moveToFreeName(const std::filesystem::path& from, const std::filesystem::path& to);

/// @return the lowest number from 1 that no other process which has asked has; this one keeps it until it ends.
/// @throws std::system_error when the system refuses.
uint32_t processNumber();

/// Keeps this library's image in the process for good: the printers live in it, and the host unloads it each
/// time it closes.
void stayLoaded();

}  // namespace simulator
