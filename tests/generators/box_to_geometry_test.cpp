// SPDX-License-Identifier: MIT
#include "generators/box_to_geometry.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <vector>

#include "support/boxes.hpp"

namespace kelvora {
namespace {

template <typename T>
class ToUnsigned : public ::testing::Test {};
using Numbers = ::testing::Types<float, double>;
TYPED_TEST_SUITE(ToUnsigned, Numbers, );

TYPED_TEST(ToUnsigned, KeepsTheWholePart) {
    EXPECT_EQ(toUnsigned(TypeParam{0}), 0U);
    EXPECT_EQ(toUnsigned(TypeParam{0.75}), 0U);
    EXPECT_EQ(toUnsigned(TypeParam{7.96875}), 7U);
    EXPECT_EQ(toUnsigned(TypeParam{9223372036854775808.0}), 1ULL << 63);
    // The largest float below 2^64.
    EXPECT_EQ(toUnsigned(TypeParam{18446742974197923840.0}), 18446742974197923840U);
}

TYPED_TEST(ToUnsigned, Is0ForNumbersThatDoNotFit) {
    using Limits = std::numeric_limits<TypeParam>;
    for (const TypeParam value :
         {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(),
          Limits::lowest(), TypeParam{-1}, TypeParam{-0.5}, TypeParam{18446744073709551616.0}}) {
        EXPECT_EQ(toUnsigned(value), 0U) << value;
    }
}

constexpr PointScales kScales = {2, 4, 0.5F};

TEST(BoxToGeometry, DividesByTheScalesAndClips) {
    const std::vector<float> box = {10, 20, 30, 40};
    const std::vector<ClusterGeometry> geometry = {boxToGeometry<2>(box, kScales, 15, 100, 9)};
    EXPECT_THAT(test::boxesOf(geometry), ::testing::ElementsAre(test::Box{5, 5, 10, 10}));
    EXPECT_EQ(geometry[0].timestamp, 9U);
    EXPECT_EQ(geometry[0].start_time, -1);
}

TEST(BoxToGeometry, TurnsTheThirdAxisIntoTime) {
    const std::vector<double> box = {10, 20, 50, 30, 40, 3.75};
    const ClusterGeometry geometry = boxToGeometry<3>(box, kScales, 100, 100, 9);
    EXPECT_EQ(geometry.start_time, 100);
    EXPECT_EQ(geometry.duration, 7);
    EXPECT_EQ(geometry.z, 0U);
    EXPECT_EQ(geometry.depth, 0U);
}

TEST(BoxToGeometry, HasTheTime0IfTheTimeIsNegativeOrUndefined) {
    constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> box = {10, 20, -50, 30, 40, kUndefined};
    const ClusterGeometry geometry = boxToGeometry<3>(box, kScales, 100, 100, 9);
    EXPECT_EQ(geometry.start_time, 0);
    EXPECT_EQ(geometry.duration, 0);
}

}  // namespace
}  // namespace kelvora
