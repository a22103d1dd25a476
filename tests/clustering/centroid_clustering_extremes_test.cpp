// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "support/kmeans_outcome.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using ::testing::Each;
using ::testing::SizeIs;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();

template <class Kind>
class ExtremeCentroidClusters : public ::testing::Test {};
TYPED_TEST_SUITE(ExtremeCentroidClusters, PointKinds, PointKindNames);

template <class Kind>
void expectEachPointIsInOneCluster(const KMeansOutcome<Kind>& found, std::size_t points) {
    std::vector<int> times(points, 0);
    for (std::size_t c = 0; c < found.clustering.clusters.size(); ++c) {
        const auto& members = found.clustering.clusters[c];
        EXPECT_TRUE(std::is_sorted(members.begin(), members.end()));
        EXPECT_EQ(members.size(), found.counts[c]);
        for (const std::size_t member : members) {
            ASSERT_LT(member, points);
            ++times[member];
        }
    }
    EXPECT_THAT(times, Each(1));
}

TYPED_TEST(ExtremeCentroidClusters, ContainPointsThatAreNotFinite) {
    for (const double value : {kInfinity, -kInfinity, kUndefined}) {
        for (std::size_t axis = 0; axis < TypeParam::kDim; ++axis) {
            for (const int one_in : {1, 2, 100}) {
                Random random(9);
                auto points = randomGridPoints<TypeParam>(random, 3000, -500, 1000, 1);
                for (std::size_t i = 0; i < points.size(); i += static_cast<std::size_t>(one_in)) {
                    points[i].coordinates[axis] = static_cast<typename TypeParam::T>(value);
                }
                const auto found = kMeansOf<TypeParam>(points, 30, 5);
                expectEachPointIsInOneCluster(found, points.size());
                EXPECT_THAT(found.centroids, SizeIs(30));
                EXPECT_THAT(found.clustering.boxes, SizeIs(30));
            }
        }
    }
}

TYPED_TEST(ExtremeCentroidClusters, TakePointsThatAreNotFiniteIntoTheFirst) {
    for (const double value : {kInfinity, -kInfinity, kUndefined}) {
        for (int run = 0; run < 20; ++run) {
            const auto found = kMeansOf<TypeParam>(line<TypeParam>({0, 7, value, 1, value}), 2);
            const auto& first = found.clustering.clusters[0];
            EXPECT_THAT(first, ::testing::IsSupersetOf({2, 4}));
            expectEachPointIsInOneCluster(found, 5);
        }
    }
}

TYPED_TEST(ExtremeCentroidClusters, SurviveTheLargestNumbers) {
    using Coordinate = typename TypeParam::T;
    Random random(11);
    typename TypeParam::Points points(3000);
    for (auto& point : points) {
        for (Coordinate& value : point.coordinates) {
            value = static_cast<Coordinate>(randomInt(random, -1000, 1000)) / 1000 *
                    std::numeric_limits<Coordinate>::max();
        }
    }
    expectEachPointIsInOneCluster(kMeansOf<TypeParam>(points, 20), points.size());
}

}  // namespace
}  // namespace kelvora::test
