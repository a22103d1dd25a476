// SPDX-License-Identifier: MIT
#include "simulation/random_numbers.hpp"

namespace kelvora::simulation {

namespace {

// An odd constant with well-mixed bits (2^64 divided by the golden ratio) keeps the seeds of
// streams distinct.
constexpr std::uint64_t kStreamStride = 0x9E3779B97F4A7C15;

}  // namespace

RandomNumbers::RandomNumbers(std::uint64_t seed, std::uint64_t stream)
    : generator(seed + stream * kStreamStride) {}

double RandomNumbers::uniform() {
    return static_cast<double>(generator() >> 11U) * 0x1p-53;
}

double RandomNumbers::uniform(double low, double high) {
    return low + (high - low) * uniform();
}

std::uint64_t RandomNumbers::below(std::uint64_t count) {
    // The values above the largest multiple of count would favour the small remainders.
    const std::uint64_t excess = (UINT64_MAX % count + 1) % count;
    std::uint64_t value = generator();
    while (value > UINT64_MAX - excess) {
        value = generator();
    }
    return value % count;
}

bool RandomNumbers::coin() {
    return (generator() >> 63U) != 0;
}

double RandomNumbers::exponential() {
    // Von Neumann's method. A descending run of uniform numbers that starts with x has an odd
    // length with probability exp(-x); every run of even length moves the result on by one.
    double whole = 0;
    while (true) {
        const double first = uniform();
        double last = first;
        double next = uniform();
        bool odd_length = true;
        while (next < last) {
            last = next;
            next = uniform();
            odd_length = !odd_length;
        }
        if (odd_length) {
            return whole + first;
        }
        whole += 1;
    }
}

double RandomNumbers::bell() {
    // The sum of twelve uniform numbers has variance 1.
    double sum = -6;
    for (int i = 0; i < 12; ++i) {
        sum += uniform();
    }
    return sum;
}

}  // namespace kelvora::simulation
