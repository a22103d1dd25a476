// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace kelvora::tool {

/// A length of time, written with its unit: 250us, 10ms, 1.5s.
struct Duration {
    /// About 30,000 years. Beyond this, sums with timestamps could overflow.
    static constexpr std::uint64_t kLongest = 1'000'000'000'000'000'000;

    std::uint64_t microseconds = 0;
};

/// \throws std::invalid_argument  with a sentence that describes the problem.
Duration durationFromString(const std::string& text);

/// Uses the largest unit that needs no fraction, for example 10ms.
std::string toString(Duration duration);

}  // namespace kelvora::tool
