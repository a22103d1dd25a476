// SPDX-License-Identifier: MIT
#include "command_line/duration_histogram.hpp"

#include <algorithm>
#include <cmath>

namespace kelvora::tool {

namespace {

constexpr double kGrowth = 1.01;
constexpr double kLongest = 1e15;  // nanoseconds: eleven days

std::size_t classOf(double nanoseconds) {
    return static_cast<std::size_t>(std::log(std::clamp(nanoseconds, 1.0, kLongest)) /
                                    std::log(kGrowth));
}

/// The geometric mean of the bounds of the class.
double durationOf(std::size_t index) {
    return std::pow(kGrowth, static_cast<double>(index) + 0.5);
}

}  // namespace

DurationHistogram::DurationHistogram() : counts(classOf(kLongest) + 1, 0) {}

void DurationHistogram::add(std::chrono::nanoseconds duration) {
    ++counts[classOf(static_cast<double>(duration.count()))];
    ++total;
}

std::chrono::nanoseconds DurationHistogram::quantile(double share) const {
    const double wanted = share * static_cast<double>(total);
    std::uint64_t reached = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        reached += counts[i];
        if (reached > 0 && static_cast<double>(reached) >= wanted) {
            return std::chrono::nanoseconds(std::llround(durationOf(i)));
        }
    }
    return std::chrono::nanoseconds(0);
}

}  // namespace kelvora::tool
