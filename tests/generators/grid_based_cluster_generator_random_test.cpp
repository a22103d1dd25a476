// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>

#include "support/random_grid_case.hpp"
#include "support/rounds.hpp"

namespace kelvora::test {
namespace {

/// A thousand cases per test, so that tests can run in parallel.
class ThousandRandomCases : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(ThousandRandomCases, GiveTheClustersOfTheModel) {
    for (std::uint64_t seed = GetParam(); seed < GetParam() + rounds(1000U); ++seed) {
        const GridCase grid_case = randomGridCase(seed);
        const auto difference = compareWithModel(grid_case, grid_case.settings);
        ASSERT_FALSE(difference) << *difference << "\nseed " << seed << ": " << grid_case.settings;
    }
}

TEST_P(ThousandRandomCases, GiveTheClustersOfTheModelIfFedInBatches) {
    for (std::uint64_t seed = GetParam(); seed < GetParam() + rounds(1000U); ++seed) {
        const GridCase grid_case = randomGridCase(seed);
        const auto difference =
            compareWithModel(grid_case, grid_case.settings, Feeding::kInBatches);
        ASSERT_FALSE(difference) << *difference << "\nseed " << seed << ": " << grid_case.settings;
    }
}

INSTANTIATE_TEST_SUITE_P(FromSeed, ThousandRandomCases,
                         ::testing::Range<std::uint64_t>(0, 10'000, 1000));

}  // namespace
}  // namespace kelvora::test
