#include "comparison.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace bench {

Spread spreadOf(std::vector<double> values) {
    std::ranges::sort(values);
    const auto at = [&](double share) {
        return values[static_cast<size_t>(share * static_cast<double>(values.size() - 1))];
    };
    return {at(0.25), at(0.5), at(0.75)};
}

Result measure(const Comparison& comparison) {
    enum { library, base, baseAgain };
    const std::array<const Timed*, 3> work{&comparison.library, &comparison.base, &comparison.base};
    std::array<size_t, 3> order{library, base, baseAgain};
    std::array<std::vector<double>, 3> seconds;
    std::vector<double> ratios, noises;
    std::mt19937 random(1);
    for (const size_t which : order) (*work[which])();  // the first time is another one
    for (int round = 0; round < comparison.rounds; ++round) {
        std::ranges::shuffle(order, random);
        for (const size_t which : order) seconds[which].push_back((*work[which])());
        const double inTimes = seconds[library].back() / seconds[base].back();
        ratios.push_back(comparison.ratio == Ratio::time ? inTimes : 1 / inTimes);
        noises.push_back(seconds[baseAgain].back() / seconds[base].back());
    }
    return {spreadOf(seconds[library]).median, spreadOf(seconds[base]).median, spreadOf(ratios),
            std::abs(spreadOf(noises).median - 1)};
}

}  // namespace bench
