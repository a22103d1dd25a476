// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora::tool {

/// Durations of which quantiles are asked for, in memory that does not grow with their number: they
/// are counted in classes, each 1 % wider than the one below.
class DurationHistogram {
public:
    DurationHistogram();

    void add(std::chrono::nanoseconds duration);

    std::uint64_t count() const { return total; }

    /// The duration that a share of all durations does not exceed, off by less than 1 %; 0 if there
    /// are none.
    ///
    /// \param share  0.5: the median.
    std::chrono::nanoseconds quantile(double share) const;

private:
    std::vector<std::uint64_t> counts;
    std::uint64_t total = 0;
};

}  // namespace kelvora::tool
