// SPDX-License-Identifier: MIT
#include "scoring/assignment.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>
#include <vector>

#include "support/event_builders.hpp"

namespace kelvora::scoring {
namespace {

using test::Random;
using test::randomInt;

using Assignment = std::vector<std::optional<std::size_t>>;

CostMatrix matrix(const std::vector<std::vector<double>>& rows) {
    CostMatrix costs(rows.size(), rows.empty() ? 0 : rows.front().size());
    for (std::size_t row = 0; row < costs.rows(); ++row) {
        for (std::size_t column = 0; column < costs.columns(); ++column) {
            costs.at(row, column) = rows[row][column];
        }
    }
    return costs;
}

/// Number of pairs and their total cost.
struct Worth {
    int pairs = 0;
    double cost = 0.0;

    bool isBetterThan(const Worth& other) const {
        return pairs != other.pairs ? pairs > other.pairs : cost < other.cost - 1e-9;
    }
};

void addPair(Worth& worth, double cost) {
    if (cost != kForbidden) {
        ++worth.pairs;
        worth.cost += cost;
    }
}

/// The best of all permutations of the longer side.
Worth bestOfAll(const CostMatrix& costs) {
    const bool is_upright = costs.rows() <= costs.columns();
    std::vector<std::size_t> order(std::max(costs.rows(), costs.columns()));
    std::iota(order.begin(), order.end(), std::size_t{0});
    Worth best;
    do {
        Worth worth;
        for (std::size_t i = 0; i < std::min(costs.rows(), costs.columns()); ++i) {
            addPair(worth, is_upright ? costs.at(i, order[i]) : costs.at(order[i], i));
        }
        best = worth.isBetterThan(best) ? worth : best;
    } while (std::next_permutation(order.begin(), order.end()));
    return best;
}

/// Checks that pairs are allowed, and no column is used twice.
Worth worthOf(const CostMatrix& costs, const Assignment& assignment) {
    EXPECT_EQ(assignment.size(), costs.rows());
    std::vector<bool> is_used(costs.columns(), false);
    Worth worth;
    for (std::size_t row = 0; row < assignment.size(); ++row) {
        if (const auto column = assignment[row]) {
            EXPECT_FALSE(is_used.at(*column));
            is_used.at(*column) = true;
            EXPECT_NE(costs.at(row, *column), kForbidden);
            addPair(worth, costs.at(row, *column));
        }
    }
    return worth;
}

/// Costs of `values` kinds times `unit`, counted from `low`.
CostMatrix randomMatrix(Random& random, int values, int forbidden_percent, double low,
                        double unit) {
    CostMatrix costs(static_cast<std::size_t>(randomInt(random, 0, 6)),
                     static_cast<std::size_t>(randomInt(random, 0, 6)));
    for (std::size_t row = 0; row < costs.rows(); ++row) {
        for (std::size_t column = 0; column < costs.columns(); ++column) {
            const double cost = low + unit * randomInt(random, 0, values - 1);
            if (randomInt(random, 0, 99) >= forbidden_percent) {
                costs.at(row, column) = cost;
            }
        }
    }
    return costs;
}

void expectBest(Random& random, int values, int forbidden_percent, double low = 0.0,
                double unit = 1.0) {
    for (int i = 0; i < 300; ++i) {
        const CostMatrix costs = randomMatrix(random, values, forbidden_percent, low, unit);
        const Worth worth = worthOf(costs, assign(costs));
        const Worth best = bestOfAll(costs);
        ASSERT_EQ(worth.pairs, best.pairs);
        ASSERT_NEAR(worth.cost, best.cost, 1e-9);
    }
}

TEST(Assignment, OfNothingIsEmpty) {
    EXPECT_TRUE(assign(CostMatrix(0, 0)).empty());
    EXPECT_TRUE(assign(CostMatrix(0, 3)).empty());
    EXPECT_EQ(assign(CostMatrix(2, 0)), Assignment(2));
}

TEST(Assignment, TakesTheCheapestTotalRatherThanTheCheapestPair) {
    EXPECT_EQ(assign(matrix({{1.0, 2.0}, {2.0, 9.0}})), (Assignment{1, 0}));
}

TEST(Assignment, NeverTakesAForbiddenPair) {
    EXPECT_EQ(assign(matrix({{kForbidden, kForbidden}, {kForbidden, 1.0}})),
              (Assignment{std::nullopt, 1}));
    EXPECT_EQ(assign(CostMatrix(3, 2)), Assignment(3));
}

TEST(Assignment, PrefersMorePairsToCheaperOnes) {
    EXPECT_EQ(assign(matrix({{0.0, 1000.0}, {1000.0, kForbidden}})), (Assignment{1, 0}));
}

TEST(Assignment, LeavesOutTheMostExpensiveIfOneSideIsLonger) {
    EXPECT_EQ(assign(matrix({{5.0}, {1.0}, {3.0}})), (Assignment{std::nullopt, 0, std::nullopt}));
    EXPECT_EQ(assign(matrix({{5.0, 1.0, 3.0}})), (Assignment{1}));
}

TEST(Assignment, IsTheBestOfAllPermutations) {
    Random random(1);
    expectBest(random, 1'000'000, 0, 0.0, 1e-6);
    expectBest(random, 1'000'000, 30, 0.0, 1e-6);
    expectBest(random, 1'000'000, 70, 0.0, 1e-6);
}

TEST(Assignment, IsTheBestOfAllPermutationsWithManyTies) {
    Random random(2);
    expectBest(random, 3, 0);
    expectBest(random, 3, 40);
    expectBest(random, 1, 60);
}

TEST(Assignment, IsTheBestOfAllPermutationsWithNegativeAndWithEqualCosts) {
    Random random(3);
    expectBest(random, 9, 40, -20.0);
    expectBest(random, 1, 40, 7.0);
}

TEST(Assignment, BreaksTiesTheSameWayEachTime) {
    Random random(4);
    for (int i = 0; i < 100; ++i) {
        const CostMatrix costs = randomMatrix(random, 2, 30, 0.0, 1.0);
        EXPECT_EQ(assign(costs), assign(costs));
    }
}

TEST(Assignment, PairsALargeMatrixWhoseOptimumIsKnown) {
    // The least product of a row and a column of opposite ranks: sum of i * (n - 1 - i).
    constexpr std::size_t kSize = 200;
    CostMatrix costs(kSize, kSize);
    for (std::size_t row = 0; row < kSize; ++row) {
        for (std::size_t column = 0; column < kSize; ++column) {
            costs.at(row, column) = static_cast<double>(row * column);
        }
    }
    const Assignment assignment = assign(costs);
    for (std::size_t row = 0; row < kSize; ++row) {
        EXPECT_EQ(assignment[row], kSize - 1 - row);
    }
}

}  // namespace
}  // namespace kelvora::scoring
