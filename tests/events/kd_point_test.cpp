// SPDX-License-Identifier: MIT
#include "kelvora/kd_point.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

#include "support/points.hpp"

namespace kelvora::test {
namespace {

template <class Kind>
class KDPoints : public ::testing::Test {};
TYPED_TEST_SUITE(KDPoints, PointKinds, PointKindNames);

TYPED_TEST(KDPoints, AreTheOriginAtFirst) {
    const typename TypeParam::Point point;
    for (const auto value : point.coordinates) {
        EXPECT_EQ(value, 0);
    }
}

TYPED_TEST(KDPoints, RepeatASingleValue) {
    const typename TypeParam::Point point(typename TypeParam::T{3});
    for (int axis = 0; axis < TypeParam::kDim; ++axis) {
        EXPECT_EQ(point.getPoint(axis), 3);
    }
    const typename TypeParam::Point converted = typename TypeParam::T{-2};
    EXPECT_EQ(converted.getPoint(1), -2);
}

TYPED_TEST(KDPoints, ReturnZeroForAMissingCoordinate) {
    const typename TypeParam::Point point(typename TypeParam::T{3});
    for (const int index : {TypeParam::kDim, TypeParam::kDim + 1, -1, INT_MAX, INT_MIN}) {
        EXPECT_EQ(point.getPoint(index), 0) << index;
    }
}

TYPED_TEST(KDPoints, ContainOnlyTheirCoordinates) {
    using Point = typename TypeParam::Point;
    EXPECT_EQ(sizeof(Point), TypeParam::kDim * sizeof(typename TypeParam::T));
    EXPECT_TRUE(std::is_trivially_copyable_v<Point>);
    EXPECT_TRUE(std::is_standard_layout_v<Point>);
}

TYPED_TEST(KDPoints, AreCopiedAndMoved) {
    const auto point = at<TypeParam>(1, 2, 3);
    auto copy = point;
    const auto moved = std::move(copy);
    EXPECT_EQ(moved.coordinates, point.coordinates);
    typename TypeParam::Point assigned;
    assigned = point;
    EXPECT_EQ(assigned.coordinates, point.coordinates);
}

TYPED_TEST(KDPoints, AreAddedInPlace) {
    auto sum = at<TypeParam>(1, 2, 3);
    const auto* const result = &(sum += at<TypeParam>(10, -20, 0.5));
    EXPECT_EQ(result, &sum);
    EXPECT_EQ(sum.coordinates, at<TypeParam>(11, -18, 3.5).coordinates);
    sum += sum;
    EXPECT_EQ(sum.coordinates, at<TypeParam>(22, -36, 7).coordinates);
}

TYPED_TEST(KDPoints, AreDividedIntoANewPoint) {
    auto point = at<TypeParam>(1, -3, 5);
    EXPECT_EQ((point / 2).coordinates, at<TypeParam>(0.5, -1.5, 2.5).coordinates);
    EXPECT_EQ(point.coordinates, at<TypeParam>(1, -3, 5).coordinates);
    using T = typename TypeParam::T;
    EXPECT_EQ((point / T{3}).coordinates[0], T{1} / T{3});
}

TYPED_TEST(KDPoints, AreInfiniteOrUndefinedWhenDividedBy0) {
    auto point = at<TypeParam>(4, 0, -1);
    const auto quotient = point / 0;
    EXPECT_TRUE(std::isinf(quotient.coordinates[0]));
    EXPECT_TRUE(std::isnan(quotient.coordinates[1]));
}

TYPED_TEST(KDPoints, HaveAnExactDistanceWhereThereIsOne) {
    const double distance = at<TypeParam>(0, 0).euclideanDistance(at<TypeParam>(3, 4));
    EXPECT_EQ(distance, 5.0);
    EXPECT_EQ(at<TypeParam>(1, 2, 3).euclideanDistance(at<TypeParam>(1, 2, 3)), 0.0);
    EXPECT_EQ(at<TypeParam>(3, 4).euclideanDistance(at<TypeParam>(0, 0)), 5.0);
}

TEST(KDPointsIn3D, MeasureDistanceOnAllAxes) {
    using Kind = PointKind<3, float>;
    EXPECT_EQ(at<Kind>(0, 0, 0).euclideanDistance(at<Kind>(2, 3, 6)), 7.0);
}

TEST(KDPointsOfFloats, FormSquaresInFloatsAndSumThemInDoubles) {
    using Kind = PointKind<3, float>;
    const float a = 0.1F;
    const float b = 0.7F;
    const float c = 1.3F;
    const double expected = std::sqrt(static_cast<double>(a * a) + static_cast<double>(b * b) +
                                      static_cast<double>(c * c));
    Kind::Point point;
    point.coordinates = {a, b, c};
    EXPECT_EQ(point.euclideanDistance(Kind::Point()), expected);
    EXPECT_NE(expected, std::sqrt(static_cast<double>(a * a + b * b + c * c)));
}

TEST(KDPointsOfFloats, AreInfinitelyFarApartWhereASquareOverflows) {
    using Kind = PointKind<2, float>;
    EXPECT_EQ(at<Kind>(0, 0).euclideanDistance(at<Kind>(1e20, 0)),
              std::numeric_limits<double>::infinity());
}

TEST(KDPointsOfDoubles, DoNotOverflowWhereFloatsDo) {
    using Kind = PointKind<2, double>;
    EXPECT_EQ(at<Kind>(0, 0).euclideanDistance(at<Kind>(1e20, 0)), 1e20);
}

}  // namespace
}  // namespace kelvora::test
