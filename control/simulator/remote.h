/// What other processes ask of this one's printers.
#pragma once

#include <string>

namespace simulator {

/// While one of these lives, other processes of the user reach this one's printers. Without one there is no
/// thread for them, which would keep a process from ending whose own threads have all ended.
class Reachable {
public:
    /// Does nothing where the system gives no address or thread: to print does not depend on it.
    Reachable();
    ~Reachable();
    Reachable(const Reachable&) = delete;
    Reachable& operator=(const Reachable&) = delete;
};

/// @param request a JSON object: "do" says what, the other keys with what.
/// @return a JSON object in one line, which has the key "error" when nothing was done.
std::string answerRequest(const std::string& request);

}  // namespace simulator
