// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora::tool {

/// Computes quantiles of durations in constant memory. Durations are counted in classes, each 1 %
/// wider than the previous one.
class DurationHistogram {
public:
    DurationHistogram();

    void add(std::chrono::nanoseconds duration);

    std::uint64_t count() const { return total; }

    /// The duration that a share of all durations does not exceed, with an error below 1 %; 0 if
    /// there are none.
    ///
    /// \param share  For example, 0.5 for the median.
    std::chrono::nanoseconds quantile(double share) const;

private:
    std::vector<std::uint64_t> counts;
    std::uint64_t total = 0;
};

}  // namespace kelvora::tool
