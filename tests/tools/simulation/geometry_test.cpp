// SPDX-License-Identifier: MIT
#include "simulation/geometry.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace kelvora::simulation {
namespace {

TEST(Geometry, AngleFromHalfTangentIsAUnitVectorOfThatAngle) {
    for (const double angle : {-2.0, -0.3, 0.0, 0.001, 1.5}) {
        const Point vector = angleFromHalfTangent(std::tan(angle / 2));
        EXPECT_NEAR(vector.x, std::cos(angle), 1e-12);
        EXPECT_NEAR(vector.y, std::sin(angle), 1e-12);
    }
}

TEST(Geometry, TurningGoesFromTheXAxisTowardsTheYAxis) {
    const Point vector = turned({2, 0}, {0, 1});
    EXPECT_DOUBLE_EQ(vector.x, 0);
    EXPECT_DOUBLE_EQ(vector.y, 2);
}

TEST(Geometry, NormalisedKeepsTheDirection) {
    const Point vector = normalised({3, -4});
    EXPECT_DOUBLE_EQ(vector.x, 0.6);
    EXPECT_DOUBLE_EQ(vector.y, -0.8);
}

TEST(Geometry, RegionsThatAreApartHaveNothingInCommon) {
    EXPECT_TRUE(isEmpty(intersect({0, 0, 5, 5}, {5, 0, 9, 5})));
    EXPECT_FALSE(isEmpty(intersect({0, 0, 6, 5}, {5, 0, 9, 5})));
}

}  // namespace
}  // namespace kelvora::simulation
