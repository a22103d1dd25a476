// SPDX-License-Identifier: MIT
#include "reference/centroid_clustering.hpp"

#include <gmock/gmock.h>

#include <limits>
#include <vector>

#include "support/kmeans_outcome.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using Kind = PointKind<2, float>;
using Members = std::vector<std::vector<std::size_t>>;
using Boxes = std::vector<std::vector<float>>;

constexpr float kLargest = std::numeric_limits<float>::max();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

std::vector<float> xsOf(const Kind::Points& points) {
    std::vector<float> xs;
    for (const auto& point : points) {
        xs.push_back(point.coordinates[0]);
    }
    return xs;
}

TEST(ReferenceKMeans, GivesResultsComputedByHandOfOneIteration) {
    // From 6, the furthest is 0; then 4 lies nearer to 6.
    const auto points = line<Kind>({0, 4, 6});
    const KMeansModelRun<Kind> run(points, 2, 1, 1e-9, 2);
    const auto outcome = run.outcome;
    EXPECT_EQ(outcome.clustering.clusters, (Members{{1, 2}, {0}}));
    EXPECT_EQ(outcome.clustering.boxes, (Boxes{{4, 0, 2, 0}, {0, 0, 0, 0}}));
    EXPECT_THAT(xsOf(outcome.centroids), ElementsAre(5, 0));
    EXPECT_THAT(outcome.counts, ElementsAre(2, 1));
    EXPECT_THAT(xsOf(run.model.getCentroidsOfLabels()), ElementsAre(6, 0));
    EXPECT_EQ(run.iterations(), 1U);
}

TEST(ReferenceKMeans, GivesResultsComputedByHandOfSeveralIterations) {
    // From 5.5, the furthest is 0: all but 0 go to 5.5, which moves to 6.9; then 3 goes to 0, and
    // the centroids move to 1.5 and 7.875, which is where they stay.
    const auto points = line<Kind>({0, 3, 5.5, 8.5, 8.5, 9});
    const KMeansModelRun<Kind> two(points, 2, 2, 1e-9, 2);
    EXPECT_EQ(two.outcome.clustering.clusters, (Members{{2, 3, 4, 5}, {0, 1}}));
    EXPECT_THAT(xsOf(two.model.getCentroidsOfLabels()), ElementsAre(34.5F / 5, 0));
    EXPECT_THAT(xsOf(two.outcome.centroids), ElementsAre(7.875F, 1.5F));
    const KMeansModelRun<Kind> many(points, 2, 100, 1e-9, 2);
    EXPECT_THAT(xsOf(many.outcome.centroids), ElementsAre(7.875F, 1.5F));
    // The second assignment gives the last centroids, the third the last total, and the fourth
    // gives that again.
    EXPECT_EQ(many.iterations(), 4U);
}

TEST(ReferenceKMeans, LeavesClustersOfCoincidingCentroidsEmptyAndContinues) {
    const auto points = line<Kind>({7, 7});
    const KMeansModelRun<Kind> run(points, 2, 10, 1e9, 1);
    EXPECT_EQ(run.outcome.clustering.clusters, (Members{{0, 1}, {}}));
    EXPECT_EQ(run.outcome.clustering.boxes,
              (Boxes{{7, 0, 0, 0}, {kLargest, kLargest, -kInfinity, -kInfinity}}));
    EXPECT_THAT(run.outcome.counts, ElementsAre(2, 0));
    EXPECT_EQ(run.iterations(), 10U);
    EXPECT_FALSE(run.model.hasMovedCentroidFar());
}

TEST(ReferenceKMeans, StopsAtOnceOnlyForAnInfiniteTolerance) {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    const auto points = line<Kind>({0, 1, 5});
    const auto iterations = [&](double tol) {
        return KMeansModelRun<Kind>(points, 1, 10, tol, 0).iterations();
    };
    EXPECT_EQ(iterations(kEndless), 1U);
    EXPECT_EQ(iterations(1e300), 2U);
    EXPECT_EQ(iterations(1e-9), 3U);
    EXPECT_EQ(iterations(std::numeric_limits<double>::quiet_NaN()), 10U);
}

TEST(ReferenceKMeans, DistinguishesWrongOutcomesFromRightOnes) {
    const auto points = line<Kind>({0, 1, 9});
    const auto right = KMeansModelRun<Kind>(points, 2, 10, 1e-9, 0).outcome;
    EXPECT_TRUE(right == right);
    auto other = right;
    other.clustering.clusters[0] = {1, 0};
    EXPECT_FALSE(other == right);
    other = right;
    other.clustering.boxes[1][1] = -0.0F;
    EXPECT_FALSE(other == right);
    other = right;
    other.centroids[1].coordinates[1] = -0.0F;
    EXPECT_FALSE(other == right);
    other = right;
    other.counts.push_back(0);
    EXPECT_FALSE(other == right);
    other = right;
    other.centroids.pop_back();
    EXPECT_FALSE(other == right);
}

}  // namespace
}  // namespace kelvora::test
