// SPDX-License-Identifier: MIT
#include "simulation/random_numbers.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace kelvora::simulation {
namespace {

constexpr int kDraws = 100'000;

TEST(RandomNumbers, AreTheSameForTheSameSeedAndStream) {
    RandomNumbers a(5, 1);
    RandomNumbers b(5, 1);
    for (int i = 0; i < 100; ++i) {
        ASSERT_EQ(a.uniform(), b.uniform());
    }
}

TEST(RandomNumbers, DifferBetweenSeedsAndBetweenStreams) {
    EXPECT_NE(RandomNumbers(5, 1).uniform(), RandomNumbers(6, 1).uniform());
    EXPECT_NE(RandomNumbers(5, 1).uniform(), RandomNumbers(5, 2).uniform());
}

TEST(RandomNumbers, UniformStaysInItsRangeWithTheMeanInTheMiddle) {
    RandomNumbers random(1, 1);
    double sum = 0;
    for (int i = 0; i < kDraws; ++i) {
        const double value = random.uniform(-2, 6);
        ASSERT_GE(value, -2);
        ASSERT_LT(value, 6);
        sum += value;
    }
    EXPECT_NEAR(sum / kDraws, 2, 0.03);
}

TEST(RandomNumbers, BelowGivesAllValuesEquallyOften) {
    RandomNumbers random(1, 1);
    std::array<int, 7> counts{};
    for (int i = 0; i < kDraws; ++i) {
        ++counts.at(random.below(counts.size()));
    }
    for (const int count : counts) {
        EXPECT_NEAR(count, kDraws / 7, 500);
    }
}

TEST(RandomNumbers, CoinFallsOnBothSidesEquallyOften) {
    RandomNumbers random(1, 1);
    int heads = 0;
    for (int i = 0; i < kDraws; ++i) {
        heads += random.coin() ? 1 : 0;
    }
    EXPECT_NEAR(heads, kDraws / 2, 700);
}

TEST(RandomNumbers, ExponentialHasTheTailOfItsDistribution) {
    RandomNumbers random(1, 1);
    double sum = 0;
    std::array<int, 4> above{};
    for (int i = 0; i < kDraws; ++i) {
        const double value = random.exponential();
        sum += value;
        for (std::size_t limit = 0; limit < above.size(); ++limit) {
            above.at(limit) += value > static_cast<double>(limit) * 0.7 ? 1 : 0;
        }
    }
    EXPECT_NEAR(sum / kDraws, 1, 0.015);
    for (std::size_t limit = 0; limit < above.size(); ++limit) {
        EXPECT_NEAR(above.at(limit), kDraws * std::exp(-0.7 * static_cast<double>(limit)), 700);
    }
}

TEST(RandomNumbers, BellHasMeanZeroAndDeviationOne) {
    RandomNumbers random(1, 1);
    double sum = 0;
    double sum_of_squares = 0;
    for (int i = 0; i < kDraws; ++i) {
        const double value = random.bell();
        ASSERT_LE(std::abs(value), 6);
        sum += value;
        sum_of_squares += value * value;
    }
    EXPECT_NEAR(sum / kDraws, 0, 0.015);
    EXPECT_NEAR(sum_of_squares / kDraws, 1, 0.02);
}

}  // namespace
}  // namespace kelvora::simulation
