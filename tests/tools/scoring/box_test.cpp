// SPDX-License-Identifier: MIT
#include "scoring/box.hpp"

#include <gtest/gtest.h>

namespace kelvora::scoring {
namespace {

TEST(IntersectionOverUnion, IsOneForTheSameBoxAndZeroForBoxesApart) {
    EXPECT_DOUBLE_EQ(intersectionOverUnion({1, 2, 3, 4}, {1, 2, 3, 4}), 1.0);
    EXPECT_DOUBLE_EQ(intersectionOverUnion({0, 0, 2, 2}, {5, 0, 2, 2}), 0.0);
    EXPECT_DOUBLE_EQ(intersectionOverUnion({0, 0, 2, 2}, {5, 5, 2, 2}), 0.0);
}

TEST(IntersectionOverUnion, IsZeroForBoxesThatOnlyTouch) {
    EXPECT_DOUBLE_EQ(intersectionOverUnion({0, 0, 2, 2}, {2, 0, 2, 2}), 0.0);
}

TEST(IntersectionOverUnion, IsTheShareOfTheCommonArea) {
    EXPECT_DOUBLE_EQ(intersectionOverUnion({0, 0, 4, 4}, {2, 2, 4, 4}), 4.0 / 28.0);
    EXPECT_DOUBLE_EQ(intersectionOverUnion({2, 2, 4, 4}, {0, 0, 4, 4}), 4.0 / 28.0);
    EXPECT_DOUBLE_EQ(intersectionOverUnion({0, 0, 4, 4}, {1, 1, 2, 2}), 4.0 / 16.0);
}

TEST(IntersectionOverUnion, IsZeroForABoxWithoutArea) {
    EXPECT_DOUBLE_EQ(intersectionOverUnion({1, 1, 0, 0}, {1, 1, 0, 0}), 0.0);
    EXPECT_DOUBLE_EQ(intersectionOverUnion({0, 0, 4, 4}, {1, 1, 0, 2}), 0.0);
}

}  // namespace
}  // namespace kelvora::scoring
