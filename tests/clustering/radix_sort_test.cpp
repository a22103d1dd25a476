// SPDX-License-Identifier: MIT
#include "clustering/radix_sort.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/event_builders.hpp"

namespace kelvora {
namespace {

TEST(RadixSort, GivesTheOrderOfStandardSorting) {
    for (const std::size_t count : {0U, 1U, 2U, 100U, 511U, 512U, 513U, 5000U}) {
        for (const unsigned bits : {1U, 10U, 11U, 12U, 33U, 44U}) {
            test::Random random(count + bits);
            std::vector<std::uint64_t> numbers(count);
            for (std::size_t i = 0; i < count; ++i) {
                numbers[i] = (random() & ((std::uint64_t{1} << bits) - 1)) << 20U | i;
            }
            std::vector<std::uint64_t> expected = numbers;
            std::sort(expected.begin(), expected.end());
            std::vector<std::uint64_t> other;
            sortByBits(numbers, other, 20, bits);
            ASSERT_EQ(numbers, expected) << count << " numbers of " << bits << " bits";
        }
    }
}

}  // namespace
}  // namespace kelvora
