/// Waiting for a printer: who waits says for what, for how long at most, and can be stopped.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "failure.h"

namespace tool {

using Clock = std::chrono::steady_clock;

/// Says after one second what the program is waiting for: in one line on standard error, which a terminal shows
/// with the time, and which goes when the wait is over. Within another one's life it says nothing.
class WaitingNotice {
public:
    explicit WaitingNotice(std::string what);
    ~WaitingNotice();
    WaitingNotice(const WaitingNotice&) = delete;
    WaitingNotice& operator=(const WaitingNotice&) = delete;

    /// To be called several times a second.
    void update();

private:
    const std::string what_;
    const bool isInner_;
    const Clock::time_point start_ = Clock::now();
    long shownSeconds_ = 0;
};

/// For how long a call of the library may take, and what is said then.
struct Patience {
    std::string what;                          // the printer that is waited for, after "waiting for"
    std::optional<Clock::time_point> until{};  // none: as long as it takes
    std::function<Failure()> tooLong{};
    std::function<Failure()> interrupted{};  // none: Ctrl-C ends the program as it does elsewhere
};

/// Of calls that wait for the printer's answers.
inline const Patience forAnswers = {.what = "the printer's answer"};

/// Calls the library on the thread that makes all its calls, so that the program can go on living when the call
/// does not come back. Then what was waited for too long is told, and the program ends at once.
void callPatiently(const Patience& patience, const std::function<void()>& call);

/// From now on each call of the library is told on standard error, with its result and its time.
void tellCalls();

/// The same for a function that has a result code.
/// @param text the call as the source of a program has it.
uint32_t callLibrary(const Patience& patience, const std::string& text, uint16_t& code,
                     const std::function<uint32_t(uint16_t* code)>& call);

}  // namespace tool
