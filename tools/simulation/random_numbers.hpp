// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <random>

namespace kelvora::simulation {

/// Random numbers that depend only on the seed, on all platforms.
///
/// The distributions of the standard library may differ between implementations, and `std::log`
/// between machines. Numbers are therefore computed from the generator's bits with additions and
/// comparisons only.
class RandomNumbers {
public:
    /// Streams of the same seed are independent: drawing more numbers from one does not change the
    /// others.
    RandomNumbers(std::uint64_t seed, std::uint64_t stream);

    /// Uniform in [0, 1), in steps of 2^-53.
    double uniform();

    /// Uniform between two values, the upper one excluded.
    double uniform(double low, double high);

    /// Uniform in 0, ..., count - 1. \pre count > 0
    std::uint64_t below(std::uint64_t count);

    /// True with probability one half.
    bool coin();

    /// Exponentially distributed with mean 1: the waiting time of a Poisson process of unit rate.
    double exponential();

    /// Bell-shaped with mean 0 and standard deviation 1, never beyond -6 or 6.
    double bell();

private:
    std::mt19937_64 generator;
};

}  // namespace kelvora::simulation
