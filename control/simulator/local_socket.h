/// Requests between processes of one user: each process that simulates printers has one address, by its number.
/// A connection takes one line with a request and gives one line with the answer.
///
/// On Linux the address is the stream socket "zprusb-simulator-control-PID" in the abstract namespace, on
/// Windows the pipe \\.\pipe\zprusb-simulator-control-PID. Nothing of it is left when the process has ended.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace simulator {

using Answering = std::function<std::string(const std::string& request)>;

/// The address of this process, which it has as long as this lives.
class Listener {
public:
    /// @return null where the system gives none.
    static std::unique_ptr<Listener> open();
    virtual ~Listener() = default;

    /// Answers the requests, one after the other, until stopServing() or until the address is lost.
    virtual void serve(const Answering& answer) = 0;
};

/// Makes serve() return: the one that is running, or else the next one. Takes no lock, so that a thread can
/// call it that is ending.
void stopServing();

/// @return none when the process simulates nothing, belongs to somebody else, or does not answer in time.
std::optional<std::string> askProcess(uint32_t process, const std::string& request);

/// The numbers of this user's processes that simulate printers, in ascending order.
std::vector<uint32_t> simulatingProcesses();

}  // namespace simulator
