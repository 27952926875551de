/// Measures the library against its limit: the least that the machine takes for the same thing.
#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace bench {

/// Does a thing once and tells how many seconds that took, without what had to be prepared for it.
using Timed = std::function<double()>;

template <class Work>
double secondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// A measurement is worth nothing when what it measures fails.
inline void require(bool done, const char* step) {
    if (done) return;
    std::fprintf(stderr, "bench: %s failed\n", step);
    std::exit(1);
}

/// How a line's ratio reads.
enum class Ratio {
    speed,  ///< the library's speed, in speeds of the limit: the more the better
    time,   ///< the library's time, in times of the limit: the less the better
};

struct Comparison {
    std::string name;
    std::string limit;  // what it is measured against
    Timed library;
    Timed base;
    Ratio ratio = Ratio::time;
    double goal = 0;  // 0: none
    int rounds = 201;
};

struct Spread {
    double lowerQuartile, median, upperQuartile;
};

Spread spreadOf(std::vector<double> values);

struct Result {
    double librarySeconds;
    double baseSeconds;
    Spread ratio;
    double noise;  // how far the limit is from itself, measured twice; 0.01 is 1 %
};

/// Each round measures the library once and the limit twice, in an order that changes. What else the machine
/// does then meets all three alike, and the ratios are those of neighbours.
Result measure(const Comparison& comparison);

}  // namespace bench
