#include "progress_bar.h"

#include <cstdio>
#include <utility>

#include "steps.h"
#include "system.h"

namespace tool {
namespace {

constexpr size_t barWidth = 40;

}  // namespace

ProgressBar::ProgressBar(std::string label, size_t total)
    : label_(std::move(label)),
      total_(total),
      visible_(chosenSteps() == Steps::forPeople && isTerminal(stderr)) {
    show(0);
}

ProgressBar::~ProgressBar() {
    if (visible_) std::fprintf(stderr, "\r%*s\r", static_cast<int>(label_.size() + barWidth + 8), "");
}

void ProgressBar::show(size_t done) {
    const size_t percent = total_ == 0 ? 100 : done * 100 / total_;
    if (percent == percent_) return;
    percent_ = percent;
    tellStep("{\"step\":\"" + label_ + "\",\"bytes\":" + std::to_string(done) +
             ",\"of\":" + std::to_string(total_) + "}");
    if (!visible_) return;
    const size_t filled = percent * barWidth / 100;
    const std::string bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
    std::fprintf(stderr, "\r%s [%s] %3zu %%", label_.c_str(), bar.c_str(), percent);
    std::fflush(stderr);
}

}  // namespace tool
