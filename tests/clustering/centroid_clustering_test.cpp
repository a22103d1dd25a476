// SPDX-License-Identifier: MIT
#include "kelvora/centroid_clustering.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <limits>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/kmeans_outcome.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Members = std::vector<std::vector<std::size_t>>;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kAbsurd = std::numeric_limits<std::size_t>::max() / 2;
constexpr double kTol = 1e-9;
/// Enough runs to see each of a few possible results.
constexpr int kRuns = 200;

template <class Kind>
class CentroidClusters : public ::testing::Test {
public:
    using T = typename Kind::T;
    using Points = typename Kind::Points;
    using Tested = CentroidClustering<Kind::kDim, T>;

    static std::string messageFor(std::size_t k, std::size_t max_iter, double tol) {
        try {
            const Tested clustering(k, max_iter, tol);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

    static Points centroidsOf(const Tested& clustering) {
        Points centroids = line<Kind>({1, 2, 3});
        clustering.getCentroids(centroids);
        return centroids;
    }

    static std::vector<std::size_t> countsOf(const Tested& clustering) {
        std::vector<std::size_t> counts = {9, 9, 9, 9, 9};
        clustering.getNumPointsPerCluster(counts);
        return counts;
    }

    /// First coordinates.
    static std::vector<double> xsOf(const Points& points) {
        std::vector<double> xs;
        for (const auto& point : points) {
            xs.push_back(static_cast<double>(point.coordinates[0]));
        }
        return xs;
    }

    /// A box without points.
    static std::vector<T> emptyBox() {
        std::vector<T> box(Kind::kDim, std::numeric_limits<T>::max());
        box.resize(2 * Kind::kDim, -std::numeric_limits<T>::infinity());
        return box;
    }

    /// The order in which points on the x axis become initial centroids, for several runs. With as
    /// many clusters as points, these centroids do not move.
    static std::set<std::vector<double>> samplingOrders(const std::vector<double>& xs) {
        std::set<std::vector<double>> orders;
        for (int run = 0; run < kRuns; ++run) {
            orders.insert(xsOf(kMeansOf<Kind>(line<Kind>(xs), xs.size()).centroids));
        }
        return orders;
    }

    /// Whether a point is nearer to another centroid than to the centroid of its cluster.
    static bool hasMisplacedPoint(const Points& points, const KMeansOutcome<Kind>& found) {
        for (std::size_t c = 0; c < found.centroids.size(); ++c) {
            for (const std::size_t member : found.clustering.clusters[c]) {
                const double own = points[member].euclideanDistance(found.centroids[c]);
                for (const auto& other : found.centroids) {
                    if (points[member].euclideanDistance(other) < own) {
                        return true;
                    }
                }
            }
        }
        return false;
    }
};
TYPED_TEST_SUITE(CentroidClusters, PointKinds, PointKindNames);

TYPED_TEST(CentroidClusters, AreRefusedForAnInvalidArgumentTheFirstOfSeveral) {
    const std::string k = "CentroidClustering: k must be greater than 0";
    const std::string max_iter = "CentroidClustering: max_iter must be greater than 0";
    const std::string tol = "CentroidClustering: tol must be greater than 0";
    EXPECT_EQ(this->messageFor(0, 1, 1), k);
    EXPECT_EQ(this->messageFor(0, 0, 0), k);
    EXPECT_EQ(this->messageFor(1, 0, 1), max_iter);
    EXPECT_EQ(this->messageFor(1, 0, -1), max_iter);
    for (const double refused : {0.0, -0.0, -1.0, -kInfinity}) {
        EXPECT_EQ(this->messageFor(1, 1, refused), tol) << refused;
    }
    for (const double taken : {1e-300, kInfinity, kUndefined}) {
        EXPECT_EQ(this->messageFor(1, 1, taken), "nothing was thrown") << taken;
    }
}

TYPED_TEST(CentroidClusters, AreRefusedIfTheirCountsFitNoMemory) {
    EXPECT_THROW(typename TestFixture::Tested(kAbsurd, 1, 1), std::length_error);
}

TYPED_TEST(CentroidClusters, StayInPlace) {
    EXPECT_FALSE(std::is_copy_constructible_v<typename TestFixture::Tested>);
    EXPECT_FALSE(std::is_copy_assignable_v<typename TestFixture::Tested>);
}

TYPED_TEST(CentroidClusters, HaveNoCentroidsAndNoPointsBeforeTheFirstRun) {
    const typename TestFixture::Tested clustering(3, 1, kTol);
    EXPECT_THAT(this->centroidsOf(clustering), IsEmpty());
    EXPECT_THAT(this->countsOf(clustering), ElementsAre(0, 0, 0));
}

TYPED_TEST(CentroidClusters, ContainAllPointsIfOneIsRequested) {
    const typename TypeParam::Points points = {at<TypeParam>(-3, -1, -7), at<TypeParam>(-2, -2, -6),
                                               at<TypeParam>(2, 6, 1)};
    const auto found = kMeansOf<TypeParam>(points, 1);
    EXPECT_EQ(found.clustering.clusters, (Members{{0, 1, 2}}));
    EXPECT_EQ(found.centroids[0].coordinates, at<TypeParam>(-1, 1, -4).coordinates);
    EXPECT_THAT(found.counts, ElementsAre(3));
    std::vector<typename TypeParam::T> box = {-3, -2, 5, 8};
    if (TypeParam::kDim == 3) {
        box = {-3, -2, -7, 5, 8, 8};
    }
    EXPECT_THAT(found.clustering.boxes, ElementsAre(box));
}

TYPED_TEST(CentroidClusters, AreTheGroupsOfPointsInEitherOrder) {
    const auto points = line<TypeParam>({100, 0, 104, 1, 2});
    std::set<Members> seen;
    for (int run = 0; run < kRuns; ++run) {
        const auto found = kMeansOf<TypeParam>(points, 2);
        const bool far_first = found.clustering.clusters[0][0] == 0;
        seen.insert(found.clustering.clusters);
        EXPECT_THAT(this->xsOf(found.centroids),
                    far_first ? ElementsAre(102, 1) : ElementsAre(1, 102));
        EXPECT_THAT(found.counts, far_first ? ElementsAre(2, 3) : ElementsAre(3, 2));
        const auto& far_box = found.clustering.boxes[far_first ? 0 : 1];
        EXPECT_EQ(far_box[0], 100);
        EXPECT_EQ(far_box[TypeParam::kDim], 4);
    }
    EXPECT_EQ(seen, (std::set<Members>{{{0, 2}, {1, 3, 4}}, {{1, 3, 4}, {0, 2}}}));
}

TYPED_TEST(CentroidClusters, AreSinglePointsIfThereAreAsManyClusters) {
    const auto points = line<TypeParam>({5, -4, 9, 0.5});
    // It returns, so it stops when nothing changes.
    const auto found = kMeansOf<TypeParam>(points, 4, std::numeric_limits<std::size_t>::max());
    EXPECT_THAT(found.counts, ElementsAre(1, 1, 1, 1));
    for (std::size_t c = 0; c < 4; ++c) {
        ASSERT_THAT(found.clustering.clusters[c], SizeIs(1));
        const auto& point = points[found.clustering.clusters[c][0]];
        EXPECT_EQ(found.centroids[c].coordinates, point.coordinates);
        EXPECT_EQ(found.clustering.boxes[c][0], point.coordinates[0]);
        EXPECT_EQ(found.clustering.boxes[c][TypeParam::kDim], 0);
    }
}

TYPED_TEST(CentroidClusters, BeginAtPointsFarFromEachOther) {
    EXPECT_EQ(this->samplingOrders({0, 1, 10, 4}),
              (std::set<std::vector<double>>{
                  {0, 10, 4, 1}, {1, 10, 4, 0}, {10, 0, 4, 1}, {4, 10, 0, 1}}));
}

TYPED_TEST(CentroidClusters, BeginAtTheFirstOfPointsThatAreEquallyFar) {
    EXPECT_EQ(this->samplingOrders({0, 5, -5}),
              (std::set<std::vector<double>>{{0, 5, -5}, {5, -5, 0}, {-5, 5, 0}}));
}

TYPED_TEST(CentroidClusters, BeginAtEachPointEquallyOften) {
    const auto points = line<TypeParam>({0, 1, 10, 4, 7});
    std::vector<int> times(5, 0);
    for (int run = 0; run < 2000; ++run) {
        ++times[kMeansOf<TypeParam>(points, 5).clustering.clusters[0][0]];
    }
    // 400 on average, with a standard deviation of 18.
    EXPECT_THAT(times, Each(::testing::AllOf(::testing::Gt(280), ::testing::Lt(520))));
}

TYPED_TEST(CentroidClusters, TakeAPointBetweenTwoCentroidsIntoTheFirst) {
    const auto points = line<TypeParam>({0, 2, 1});
    for (int run = 0; run < kRuns; ++run) {
        const auto found = kMeansOf<TypeParam>(points, 2, 1);
        EXPECT_THAT(found.counts, ElementsAre(2, 1));
        EXPECT_EQ(found.clustering.clusters[0][1], 2U);
    }
}

TYPED_TEST(CentroidClusters, KeepThePointsTheyHadBeforeTheirCentroidsMovedLast) {
    // From 0 or 10, the point at 5.5 falls to 10, which then moves to 8.875, and 0 to 3.
    const auto points = line<TypeParam>({0, 4, 4, 4, 5.5, 10, 10, 10});
    int misplaced_once = 0;
    for (int run = 0; run < kRuns; ++run) {
        misplaced_once +=
            this->hasMisplacedPoint(points, kMeansOf<TypeParam>(points, 2, 1)) ? 1 : 0;
        EXPECT_FALSE(this->hasMisplacedPoint(points, kMeansOf<TypeParam>(points, 2, 20)));
    }
    EXPECT_GT(misplaced_once, 0);
    EXPECT_LT(misplaced_once, kRuns);
}

TYPED_TEST(CentroidClusters, AreEmptyExceptOneIfAllPointsCoincide) {
    const auto found = kMeansOf<TypeParam>(line<TypeParam>({3, 3, 3}), 3);
    EXPECT_EQ(found.clustering.clusters, (Members{{0, 1, 2}, {}, {}}));
    EXPECT_THAT(found.counts, ElementsAre(3, 0, 0));
    EXPECT_THAT(this->xsOf(found.centroids), ElementsAre(3, 3, 3));
    EXPECT_EQ(found.clustering.boxes[0][0], 3);
    EXPECT_EQ(found.clustering.boxes[0][TypeParam::kDim], 0);
    EXPECT_EQ(found.clustering.boxes[1], this->emptyBox());
    EXPECT_EQ(found.clustering.boxes[2], this->emptyBox());
}

TYPED_TEST(CentroidClusters, HaveTheFirstPointAsCentroidWhereAllPlacesAreTaken) {
    const auto points = line<TypeParam>({0, 0, 5});
    std::set<Members> seen;
    for (int run = 0; run < kRuns; ++run) {
        const auto found = kMeansOf<TypeParam>(points, 3);
        seen.insert(found.clustering.clusters);
        EXPECT_EQ(found.clustering.boxes[2], this->emptyBox());
        EXPECT_EQ(this->xsOf(found.centroids)[2], 0);
    }
    EXPECT_EQ(seen, (std::set<Members>{{{0, 1}, {2}, {}}, {{2}, {0, 1}, {}}}));
}

TYPED_TEST(CentroidClusters, AreNoneForTooFewPointsAndTheCountsStay) {
    typename TestFixture::Tested clustering(3, 20, kTol);
    Members clusters = {{7}};
    std::vector<std::vector<typename TypeParam::T>> boxes = {{1, 2}};
    clustering.generateClusters({}, clusters, boxes);
    EXPECT_THAT(clusters, IsEmpty());
    EXPECT_THAT(boxes, IsEmpty());
    EXPECT_THAT(this->countsOf(clustering), ElementsAre(0, 0, 0));
    const auto counts =
        outcomeOf<TypeParam>(clustering, line<TypeParam>({0, 9, 50, 51, 52})).counts;
    EXPECT_THAT(counts, ::testing::UnorderedElementsAre(1, 1, 3));
    for (const auto& few : {line<TypeParam>({}), line<TypeParam>({5, 6})}) {
        const auto found = outcomeOf<TypeParam>(clustering, few);
        EXPECT_THAT(found.clustering.clusters, IsEmpty());
        EXPECT_THAT(found.clustering.boxes, IsEmpty());
        EXPECT_THAT(this->centroidsOf(clustering), IsEmpty());
        EXPECT_EQ(this->countsOf(clustering), counts);
    }
}

TYPED_TEST(CentroidClusters, ReplaceTheClustersOfAnEarlierRun) {
    typename TestFixture::Tested clustering(2, 20, kTol);
    Clustering<typename TypeParam::T> found{{{7}, {8}, {9}}, {{1}, {2}, {3}}};
    for (const double x : {4.0, 8.0}) {
        clustering.generateClusters(line<TypeParam>({0, x, x}), found.clusters, found.boxes);
        EXPECT_EQ(inOrderOfFirstMembers(found).clusters, (Members{{0}, {1, 2}}));
        EXPECT_EQ(inOrderOfFirstMembers(found).boxes[1][0], x);
        EXPECT_THAT(this->xsOf(this->centroidsOf(clustering)),
                    ::testing::UnorderedElementsAre(0, x));
        EXPECT_THAT(this->countsOf(clustering), ::testing::UnorderedElementsAre(1, 2));
    }
}

TYPED_TEST(CentroidClusters, HaveTheNumberThatWasSetForTheNextRun) {
    const auto points = line<TypeParam>({0, 10, 20, 30});
    typename TestFixture::Tested clustering(2, 20, kTol);
    EXPECT_THAT(outcomeOf<TypeParam>(clustering, points).counts, SizeIs(2));
    EXPECT_FALSE(clustering.setClusterNumber(0));
    EXPECT_THAT(outcomeOf<TypeParam>(clustering, points).clustering.clusters, SizeIs(2));
    EXPECT_TRUE(clustering.setClusterNumber(4));
    EXPECT_THAT(this->centroidsOf(clustering), SizeIs(2));
    EXPECT_THAT(this->countsOf(clustering), SizeIs(2));
    const auto four = outcomeOf<TypeParam>(clustering, points);
    EXPECT_THAT(four.clustering.clusters, Each(SizeIs(1)));
    EXPECT_THAT(four.centroids, SizeIs(4));
    EXPECT_THAT(four.counts, ElementsAre(1, 1, 1, 1));
    EXPECT_TRUE(clustering.setClusterNumber(1));
    const auto one = outcomeOf<TypeParam>(clustering, points);
    EXPECT_EQ(one.clustering.clusters, (Members{{0, 1, 2, 3}}));
    EXPECT_THAT(one.clustering.boxes, SizeIs(1));
    EXPECT_THAT(one.centroids, SizeIs(1));
    EXPECT_THAT(one.counts, ElementsAre(4, 0, 0, 0));
}

TYPED_TEST(CentroidClusters, MayBeSetToMoreThanFitAnyMemoryAsLongAsThereAreFewerPoints) {
    typename TestFixture::Tested clustering(2, 20, kTol);
    outcomeOf<TypeParam>(clustering, line<TypeParam>({0, 5, 5}));
    for (const std::size_t k : {kAbsurd, 2 * kAbsurd + 1}) {
        EXPECT_TRUE(clustering.setClusterNumber(k));
        EXPECT_NO_THROW(this->centroidsOf(clustering));
        EXPECT_THAT(outcomeOf<TypeParam>(clustering, line<TypeParam>({1, 2})).clustering.clusters,
                    IsEmpty());
        EXPECT_THAT(this->centroidsOf(clustering), IsEmpty());
        EXPECT_THAT(this->countsOf(clustering), ::testing::UnorderedElementsAre(1, 2));
    }
}

}  // namespace
}  // namespace kelvora::test
