/// Requests between processes of one user: each process that simulates printers has one address, by its number.
/// A connection takes one line with a request and gives one line with the answer.
///
/// On Linux the address is the stream socket "zprusb-simulator-control-PID" in the abstract namespace, on
/// Windows the pipe \\.\pipe\zprusb-simulator-control-PID. Nothing of it is left when the process has ended.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// Answers the requests to this process from now on, one after the other in a thread of its own. Does nothing
/// where the system gives no address: to print does not depend on it.
void serveOwnProcess(std::function<std::string(const std::string& request)> answer);

/// @return none when the process simulates nothing, belongs to somebody else, or does not answer in time.
std::optional<std::string> askProcess(uint32_t process, const std::string& request);

/// The numbers of this user's processes that simulate printers, in ascending order.
std::vector<uint32_t> simulatingProcesses();

}  // namespace simulator
