// SPDX-License-Identifier: MIT
#include "scoring/overlaps.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <utility>
#include <vector>

namespace kelvora::scoring {
namespace {

using Pairs = std::vector<std::pair<std::size_t, std::size_t>>;

constexpr std::size_t kMost = 1'000'000;

Pairs sortedPairs(const std::vector<Overlap>& overlaps) {
    Pairs pairs;
    for (const Overlap& overlap : overlaps) {
        pairs.emplace_back(overlap.row, overlap.column);
    }
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

std::vector<Box> randomBoxes(std::mt19937& random, std::size_t count) {
    const auto below = [&](unsigned limit) { return static_cast<double>(random() % limit); };
    std::vector<Box> boxes;
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned largest = random() % 10 == 0 ? 200 : 20;
        boxes.push_back({below(100) - 50, below(60), below(largest), below(largest)});
    }
    return boxes;
}

TEST(Overlaps, AreAllPairsThatOverlapEnough) {
    std::mt19937 random(1);
    for (const double min_iou : {0.01, 0.3, 0.5, 1.0}) {
        for (int round = 0; round < 50; ++round) {
            const auto rows = randomBoxes(random, 40);
            auto columns = randomBoxes(random, 50);
            columns.insert(columns.end(), rows.begin(), rows.begin() + 5);
            Pairs expected;
            for (std::size_t row = 0; row < rows.size(); ++row) {
                for (std::size_t column = 0; column < columns.size(); ++column) {
                    if (intersectionOverUnion(rows[row], columns[column]) >= min_iou) {
                        expected.emplace_back(row, column);
                    }
                }
            }
            EXPECT_EQ(sortedPairs(findOverlaps(rows, columns, min_iou, kMost)), expected);
        }
    }
}

TEST(Overlaps, TellTheIntersectionOverUnion) {
    const auto overlaps = findOverlaps({{0, 0, 10, 10}}, {{50, 0, 10, 10}, {5, 0, 10, 10}}, 0.2, 5);
    ASSERT_EQ(overlaps.size(), 1U);
    EXPECT_EQ(overlaps[0].column, 1U);
    EXPECT_DOUBLE_EQ(overlaps[0].iou, 50.0 / 150.0);
}

TEST(Overlaps, MayBeFarFromTheOrigin) {
    const std::vector<Box> boxes = {{1e15, 1e15, 10, 10}, {-1e300, 0, 1e300, 1}, {1e308, 0, 1, 1}};
    EXPECT_EQ(sortedPairs(findOverlaps(boxes, boxes, 1.0, kMost)), (Pairs{{0, 0}, {1, 1}}));
}

TEST(Overlaps, AreRefusedIfThereAreTooMany) {
    const std::vector<Box> boxes(10, Box{0, 0, 1, 1});
    EXPECT_EQ(findOverlaps(boxes, boxes, 0.5, 100).size(), 100U);
    EXPECT_THROW(findOverlaps(boxes, boxes, 0.5, 99), TooManyOverlaps);
}

TEST(Overlaps, AreGroupedByCommonBoxes) {
    const std::vector<Overlap> overlaps = {{3, 0, 1.0}, {1, 7, 1.0}, {0, 5, 1.0},
                                           {4, 5, 1.0}, {4, 9, 1.0}, {2, 9, 1.0}};
    const auto groups = groupOverlaps(overlaps, 5);
    ASSERT_EQ(groups.size(), 3U);
    EXPECT_EQ(sortedPairs(groups[0]), (Pairs{{0, 5}, {2, 9}, {4, 5}, {4, 9}}));
    EXPECT_EQ(sortedPairs(groups[1]), (Pairs{{1, 7}}));
    EXPECT_EQ(sortedPairs(groups[2]), (Pairs{{3, 0}}));
}

TEST(Overlaps, AreNoneWithoutBoxes) {
    EXPECT_TRUE(findOverlaps({}, {}, 0.5, kMost).empty());
    EXPECT_TRUE(groupOverlaps({}, 0).empty());
}

}  // namespace
}  // namespace kelvora::scoring
