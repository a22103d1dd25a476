// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <limits>
#include <vector>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/density_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

template <class Kind>
class TimeOfClustersIn : public ::testing::Test {};
using SpatialKinds = ::testing::Types<PointKind<3, float>, PointKind<3, double>>;
TYPED_TEST_SUITE(TimeOfClustersIn, SpatialKinds, PointKindNames);

TYPED_TEST(TimeOfClustersIn, SpaceAndTimeKeepsEventsApart) {
    auto generator = DensitySettings().build<TypeParam>();
    EXPECT_THAT(clusterPixels(generator, {{5, 5, 100}, {6, 6, 200}}), IsEmpty());
    EXPECT_THAT(clusterPixels(generator, {{5, 5, 200}, {5, 6, 201}}), SizeIs(1));
}

TYPED_TEST(TimeOfClustersIn, SpaceAndTimeReachesFromTheFirstEventToTheLast) {
    auto generator = DensitySettings().scales(1, 1, 0.125F).density(2, 2).build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{5, 5, 800}, {5, 6, 808}, {5, 7, 820}});
    ASSERT_THAT(clusters, SizeIs(1));
    EXPECT_EQ(clusters[0].start_time, 800);
    EXPECT_EQ(clusters[0].duration, 20);
}

TYPED_TEST(TimeOfClustersIn, SpaceAndTimeKeepsTheLow32Bits) {
    constexpr unsigned long long kStart = (5ULL << 32) + (1ULL << 20);
    auto generator = DensitySettings().density(1e12, 2).build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{5, 5, kStart}, {5, 6, 9ULL << 32}});
    ASSERT_THAT(clusters, SizeIs(1));
    EXPECT_EQ(clusters[0].start_time, 1 << 20);
    EXPECT_EQ(clusters[0].duration, -(1 << 20));
}

TYPED_TEST(TimeOfClustersIn, SpaceAndTimeIs0WhereItDoesNotFit64Bits) {
    // The largest numbers round up to 2^64.
    constexpr auto kLast = std::numeric_limits<unsigned long long>::max();
    auto generator = DensitySettings().build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{5, 5, kLast - 1}, {5, 6, kLast}});
    ASSERT_THAT(clusters, SizeIs(1));
    EXPECT_EQ(clusters[0].start_time, 0);
    EXPECT_EQ(clusters[0].duration, 0);
}

TYPED_TEST(TimeOfClustersIn, SpaceAndTimeIsIn64BitsForTheLargestTimesThatFit) {
    constexpr unsigned long long kStep = 1ULL << 40;  // the spacing of floats in this range
    const unsigned long long start = 0ULL - kStep;
    auto generator = DensitySettings().build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{5, 5, start}, {5, 6, start}});
    ASSERT_THAT(clusters, SizeIs(1));
    EXPECT_EQ(clusters[0].start_time, 0);  // low bits of 2^64 - 2^40
}

TYPED_TEST(TimeOfClustersIn, SpaceAndTimeSurvivesAbsurdScales) {
    for (const float scale : {1e-45F, 1e-38F, 1e38F, 3e38F}) {
        auto generator = DensitySettings().scales(1, 1, scale).density(1.5, 1).build<TypeParam>();
        feedPixels(generator, {{5, 5, 0}, {5, 6, 1}, {5, 7, 1ULL << 62}});
        for (const ClusterGeometry& cluster : generateFrom(generator)) {
            EXPECT_GE(cluster.duration, 0);
        }
        auto wide = DensitySettings().scales(scale, scale, 1).density(1e30, 1).build<TypeParam>();
        EXPECT_NO_THROW(clusterPixels(wide, {{5, 5, 0}, {5000, 60000, 1}}));
    }
}

template <class Kind>
class TimeOfClustersInThePlane : public ::testing::Test {};
using PlaneKinds = ::testing::Types<PointKind<2, float>, PointKind<2, double>>;
TYPED_TEST_SUITE(TimeOfClustersInThePlane, PlaneKinds, PointKindNames);

TYPED_TEST(TimeOfClustersInThePlane, DoesNotMatter) {
    auto generator = DensitySettings().build<TypeParam>();
    const auto clusters = clusterPixels(generator, {{5, 5, 100}, {6, 6, 200'000}});
    ASSERT_THAT(clusters, SizeIs(1));
    EXPECT_EQ(clusters[0].start_time, -1);
    EXPECT_EQ(clusters[0].duration, 0);
}

}  // namespace
}  // namespace kelvora::test
