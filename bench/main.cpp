// Prints a table that compares the library with its limits.
// Usage: zprusb_ratios [TEXT]    only the lines whose name contains the text
#include <malloc.h>
#include <sched.h>

#include <cstring>

#include "comparisons.h"

namespace {

constexpr double tolerableNoise = 0.02;

/// With two processors, most of what is measured would be the waking of the other one.
void stayOnOneProcessor() {
    cpu_set_t allowed;
    sched_getaffinity(0, sizeof allowed, &allowed);
    int last = CPU_SETSIZE - 1;
    while (!CPU_ISSET(last, &allowed)) --last;
    CPU_ZERO(&allowed);
    CPU_SET(last, &allowed);
    sched_setaffinity(0, sizeof allowed, &allowed);
}

std::string textOf(double seconds) {
    char text[32];
    std::snprintf(text, sizeof text, seconds < 1e-3 ? "%.2f us" : "%.2f ms",
                  seconds * (seconds < 1e-3 ? 1e6 : 1e3));
    return text;
}

std::string verdict(const bench::Comparison& comparison, const bench::Result& result) {
    if (result.noise > tolerableNoise) return "too noisy to tell";
    if (comparison.goal == 0) return "";
    const double ratio = result.ratio.median;
    const bool speed = comparison.ratio == bench::Ratio::speed;
    char text[64];
    std::snprintf(text, sizeof text, "%s %g: %s", speed ? ">=" : "<=", comparison.goal,
                  (speed ? ratio >= comparison.goal : ratio <= comparison.goal) ? "met" : "missed");
    return text;
}

void reportLine(const bench::Comparison& comparison) {
    const bench::Result result = bench::measure(comparison);
    std::printf("%-38s %-36s %10s %10s  %s %6.3f (%.3f to %.3f) %5.1f %%  %s\n", comparison.name.c_str(),
                comparison.limit.c_str(), textOf(result.librarySeconds).c_str(),
                textOf(result.baseSeconds).c_str(), comparison.ratio == bench::Ratio::speed ? "speed" : "time ",
                result.ratio.median, result.ratio.lowerQuartile, result.ratio.upperQuartile, result.noise * 100,
                verdict(comparison, result).c_str());
    std::fflush(stdout);
}

/// Keeps it from adapting to what it was asked for before, so that each round finds it as the first one did.
void fixAllocator() {
    constexpr int systemDefault = 128 * 1024;
    mallopt(M_MMAP_THRESHOLD, systemDefault);
    mallopt(M_TRIM_THRESHOLD, systemDefault);
}

}  // namespace

int main(int count, char** arguments) {
    const char* wanted = count > 1 ? arguments[1] : "";
    stayOnOneProcessor();
    fixAllocator();
    std::printf("%-38s %-36s %10s %10s  %s\n", "the library", "its limit", "library", "limit",
                "ratio of the medians' pairs (quartiles), noise, goal");
    const bench::Report report = [&](const bench::Comparison& comparison) {
        if (comparison.name.find(wanted) != std::string::npos) reportLine(comparison);
    };
    bench::compareReservation(report);  // forks, so it comes before anything starts threads
    bench::comparePageData(report);
    bench::compareExchanges(report);
    bench::compareOpening(report);
    bench::compareFirmwareLoad(report);
}
