#pragma once

#include <cstddef>
#include <string>

namespace tool {

/// A bar on standard error that fills while work goes on. It shows nothing unless standard error is a terminal,
/// and leaves no trace when it ends. For programs, each percent is a step.
class ProgressBar {
public:
    ProgressBar(std::string label, size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(size_t done);

private:
    const std::string label_;
    const size_t total_;
    const bool visible_;
    size_t percent_ = 101;  // what was shown last; none yet
};

}  // namespace tool
