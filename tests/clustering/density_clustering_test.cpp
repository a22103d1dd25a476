// SPDX-License-Identifier: MIT
#include "kelvora/density_clustering.hpp"

#include <gmock/gmock.h>

#include <climits>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "support/density_models.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Members = std::vector<std::vector<std::size_t>>;

template <class Kind>
class DensityClusters : public ::testing::Test {
public:
    using T = typename Kind::T;
    using Box = std::vector<T>;

    static Clustering<T> oneJob(const typename Kind::Points& points, double eps, int min_pts) {
        return clusterPoints<Kind>(points, eps, min_pts, 1);
    }
    static Clustering<T> twoJobs(const typename Kind::Points& points, double eps, int min_pts) {
        return inOrderOfFirstMembers(clusterPoints<Kind>(points, eps, min_pts, 2));
    }
    /// A box that stands out on the x axis only.
    static Box boxOnLine(double x, double width) {
        Box box(2 * Kind::kDim);
        box[0] = static_cast<T>(x);
        box[Kind::kDim] = static_cast<T>(width);
        return box;
    }
};
TYPED_TEST_SUITE(DensityClusters, PointKinds, PointKindNames);

TYPED_TEST(DensityClusters, AreRefusedWithoutAJob) {
    DensityClustering<TypeParam::kDim, typename TypeParam::T> clustering(1, 1);
    Members clusters = {{7}};
    std::vector<typename TestFixture::Box> boxes = {{1, 2}};
    try {
        clustering.generateClustersMultiThread(line<TypeParam>({0, 1}), clusters, boxes, 0);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), std::string("n_jobs must be greater than 0"));
    }
    EXPECT_EQ(clusters, (Members{{7}}));
    EXPECT_THAT(boxes, ElementsAre(ElementsAre(1, 2)));
}

TYPED_TEST(DensityClusters, AreNoneWithoutPointsAndReplaceThePreviousContents) {
    for (const int jobs : {1, 2, 255}) {
        DensityClustering<TypeParam::kDim, typename TypeParam::T> clustering(1, 1);
        Members clusters = {{7}};
        std::vector<typename TestFixture::Box> boxes = {{1, 2}};
        clustering.generateClustersMultiThread({}, clusters, boxes,
                                               static_cast<unsigned char>(jobs));
        EXPECT_THAT(clusters, IsEmpty());
        EXPECT_THAT(boxes, IsEmpty());
    }
}

TYPED_TEST(DensityClusters, AreNoneForPointsFarApart) {
    const auto points = line<TypeParam>({0, 5, 10});
    EXPECT_THAT(this->oneJob(points, 1, 2).clusters, IsEmpty());
    EXPECT_THAT(this->twoJobs(points, 1, 1).clusters, IsEmpty());
}

TYPED_TEST(DensityClusters, AreSinglePointsIfOneIsEnough) {
    const auto found = this->oneJob(line<TypeParam>({0, 5, -10}), 1, 1);
    EXPECT_EQ(found.clusters, (Members{{0}, {1}, {2}}));
    EXPECT_THAT(found.boxes,
                ElementsAre(this->boxOnLine(0, 0), this->boxOnLine(5, 0), this->boxOnLine(-10, 0)));
}

TYPED_TEST(DensityClusters, DoNotJoinPointsAtExactlyTheRadius) {
    const typename TypeParam::Points points = {at<TypeParam>(0, 0), at<TypeParam>(3, 4)};
    EXPECT_THAT(this->oneJob(points, 5, 2).clusters, IsEmpty());
    EXPECT_THAT(this->twoJobs(points, 5, 1).clusters, IsEmpty());
    EXPECT_EQ(this->oneJob(points, 5.01, 2).clusters, (Members{{0, 1}}));
    EXPECT_EQ(this->twoJobs(points, 5.01, 1).clusters, (Members{{0, 1}}));
}

TYPED_TEST(DensityClusters, CountTheCorePointItselfOnlyWithOneJob) {
    const auto points = line<TypeParam>({0, 1, 2});
    EXPECT_EQ(withAscendingMembers(this->oneJob(points, 1.5, 3)).clusters, (Members{{0, 1, 2}}));
    EXPECT_THAT(this->twoJobs(points, 1.5, 3).clusters, IsEmpty());
    EXPECT_EQ(this->twoJobs(points, 1.5, 2).clusters, (Members{{0, 1, 2}}));
}

TYPED_TEST(DensityClusters, ComeInTheOrderOfTheirFirstCorePointsWithOneJob) {
    // The first point is a border point of the second cluster.
    const auto points = line<TypeParam>({102, 0, 1, 2, 101, 100, 99});
    EXPECT_EQ(withAscendingMembers(this->oneJob(points, 1.5, 3)).clusters,
              (Members{{1, 2, 3}, {0, 4, 5, 6}}));
}

TYPED_TEST(DensityClusters, ShareNoBorderPointWithOneJob) {
    const auto points = line<TypeParam>({5, 7, 8, 9, 10, 0, 1, 2, 3});
    EXPECT_EQ(withAscendingMembers(this->oneJob(points, 2.5, 4)).clusters,
              (Members{{0, 1, 2, 3, 4}, {5, 6, 7, 8}}));
}

TYPED_TEST(DensityClusters, AreJoinedByABorderPointWithManyJobs) {
    const auto points = line<TypeParam>({0, 1, 2, 3, 5, 7, 8, 9, 10});
    EXPECT_EQ(this->twoJobs(points, 2.5, 3).clusters, (Members{{0, 1, 2, 3, 4, 5, 6, 7, 8}}));
    EXPECT_EQ(withAscendingMembers(this->oneJob(points, 2.5, 4)).clusters,
              (Members{{0, 1, 2, 3, 4}, {5, 6, 7, 8}}));
}

TYPED_TEST(DensityClusters, HaveExactBoxesWithOneJobAlsoBelowZero) {
    const typename TypeParam::Points points = {at<TypeParam>(-3, -1, -7), at<TypeParam>(-2, -2, -6),
                                               at<TypeParam>(-4, -1, -6)};
    const auto found = this->oneJob(points, 9, 1);
    typename TestFixture::Box expected = {-4, -2, 2, 1};
    if (TypeParam::kDim == 3) {
        expected = {-4, -2, -7, 2, 1, 1};
    }
    EXPECT_THAT(found.boxes, ElementsAre(expected));
}

TYPED_TEST(DensityClusters, HaveBoxesThatReachTo0WithManyJobs) {
    const auto found = this->twoJobs(line<TypeParam>({-5, -6, -4}), 1.5, 1);
    EXPECT_THAT(found.boxes, ElementsAre(this->boxOnLine(-6, 6)));
}

TYPED_TEST(DensityClusters, HaveBoxesThatDoNotReachTheirFirstPointWithManyJobs) {
    EXPECT_THAT(this->twoJobs(line<TypeParam>({6, 5, 4}), 1.5, 1).boxes,
                ElementsAre(this->boxOnLine(4, 1)));
    EXPECT_THAT(this->twoJobs(line<TypeParam>({4, 5, 6}), 1.5, 1).boxes,
                ElementsAre(this->boxOnLine(4, 2)));
}

TYPED_TEST(DensityClusters, AreNoneIfNoPositiveNumberOfPointsIsRequired) {
    const auto points = line<TypeParam>({0, 0, 1, 1, 2, 2});
    for (const int min_pts : {0, -1, -1000, INT_MIN}) {
        for (const int jobs : {1, 2}) {
            const auto found = clusterPoints<TypeParam>(points, 5, min_pts, jobs);
            EXPECT_THAT(found.clusters, IsEmpty()) << min_pts << ", jobs " << jobs;
            EXPECT_THAT(found.boxes, IsEmpty()) << min_pts << ", jobs " << jobs;
        }
    }
}

TYPED_TEST(DensityClusters, AreNoneIfMorePointsAreRequiredThanThereAre) {
    const auto points = line<TypeParam>({0, 0, 1, 1, 2, 2});
    EXPECT_THAT(this->oneJob(points, 5, INT_MAX).clusters, IsEmpty());
    EXPECT_THAT(this->twoJobs(points, 5, INT_MAX).clusters, IsEmpty());
}

TYPED_TEST(DensityClusters, DependOnNoEarlierCall) {
    DensityClustering<TypeParam::kDim, typename TypeParam::T> clustering(2.5, 3);
    Random random(8);
    for (const std::size_t count : {300U, 20U, 0U, 150U}) {
        const auto points = randomGridPoints<TypeParam>(random, count, 0, 20, 1);
        for (const int jobs : {1, 3, 1}) {
            Clustering<typename TypeParam::T> found;
            clustering.generateClustersMultiThread(points, found.clusters, found.boxes,
                                                   static_cast<unsigned char>(jobs));
            EXPECT_EQ(inOrderOfFirstMembers(found),
                      inOrderOfFirstMembers(clusterPoints<TypeParam>(points, 2.5, 3, jobs)));
        }
    }
}

TYPED_TEST(DensityClusters, ListTheirPointsInTheOrderOfTheWalkWithOneJob) {
    std::size_t largest = 0;
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        Random random(seed);
        const auto points = randomGridPoints<TypeParam>(random, 20 + 5 * seed, -30, 60, 0.5);
        const double eps = 0.5 + 0.5 * randomInt(random, 1, 5);
        const int min_pts = randomInt(random, 1, 6);
        const auto found = this->oneJob(points, eps, min_pts);
        ASSERT_EQ(found, literalClusters<TypeParam>(points, eps, min_pts, 1)) << "seed " << seed;
        for (const auto& cluster : found.clusters) {
            largest = std::max(largest, cluster.size());
        }
    }
    EXPECT_GT(largest, 30U);
}

/// 20,000 points with non-finite coordinates on some axes, and a small cluster.
template <class Kind>
typename Kind::Points withNotFinitePoints(double value, std::size_t first_axis,
                                          std::size_t last_axis) {
    Random random(9);
    auto points = randomGridPoints<Kind>(random, 20'000, 0, 1000, 1);
    for (auto& point : points) {
        for (std::size_t axis = first_axis; axis <= last_axis; ++axis) {
            point.coordinates[axis] = static_cast<typename Kind::T>(value);
        }
    }
    return points;
}

TYPED_TEST(DensityClusters, LeaveOutPointsThatAreNotFinite) {
    const auto cluster = line<TypeParam>({-100, -101, -102, -99});
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double value : {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN()}) {
        for (std::size_t first = 0; first < TypeParam::kDim; ++first) {
            for (std::size_t last = first; last < TypeParam::kDim; ++last) {
                auto points = withNotFinitePoints<TypeParam>(value, first, last);
                EXPECT_THAT(this->oneJob(points, 2.5, 2).clusters, IsEmpty());
                EXPECT_THAT(this->twoJobs(points, 2.5, 2).clusters, IsEmpty());
                points.insert(points.begin() + 7000, cluster.begin(), cluster.end());
                const Members expected = {{7000, 7001, 7002, 7003}};
                EXPECT_EQ(withAscendingMembers(this->oneJob(points, 2.5, 2)).clusters, expected);
                EXPECT_EQ(this->twoJobs(points, 2.5, 2).clusters, expected);
            }
        }
    }
}

TYPED_TEST(DensityClusters, LeaveOutMixedPointsThatAreNotFiniteFromLargeSets) {
    Random random(10);
    auto points = randomGridPoints<TypeParam>(random, 10'000, 0, 60, 1);
    const auto finite = points;
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();
    for (int i = 0; i < 10'000; ++i) {
        points.push_back(finite[static_cast<std::size_t>(i)]);
        const auto axis = static_cast<std::size_t>(i % TypeParam::kDim);
        const double value = i % 3 == 0 ? kInfinity : i % 3 == 1 ? -kInfinity : kUndefined;
        points.back().coordinates[axis] = static_cast<typename TypeParam::T>(value);
    }
    EXPECT_EQ(withAscendingMembers(this->oneJob(points, 1.5, 4)),
              withAscendingMembers(this->oneJob(finite, 1.5, 4)));
    EXPECT_EQ(this->twoJobs(points, 1.5, 4), this->twoJobs(finite, 1.5, 4));
}

TYPED_TEST(DensityClusters, SurviveTheLargestNumbers) {
    using Coordinate = typename TypeParam::T;
    constexpr auto kLargest = std::numeric_limits<Coordinate>::max();
    Random random(11);
    typename TypeParam::Points points(10'000);
    for (auto& point : points) {
        for (Coordinate& value : point.coordinates) {
            value = static_cast<Coordinate>(randomInt(random, -1000, 1000)) / 1000 * kLargest;
        }
    }
    EXPECT_THAT(this->oneJob(points, 1, 200).clusters, IsEmpty());
    EXPECT_THAT(this->twoJobs(points, 1, 200).clusters, IsEmpty());
}

TYPED_TEST(DensityClusters, SurviveTheLargestNumbersNextToUndefinedOnes) {
    auto points = line<TypeParam>({-1e38, -1e38, -1e38});
    for (int i = 0; i < 10'000; ++i) {
        points.push_back(at<TypeParam>(std::numeric_limits<double>::quiet_NaN(), i));
    }
    EXPECT_EQ(withAscendingMembers(this->oneJob(points, 1, 3)).clusters, (Members{{0, 1, 2}}));
    EXPECT_EQ(this->twoJobs(points, 1, 2).clusters, (Members{{0, 1, 2}}));
}

TYPED_TEST(DensityClusters, HoldAllFinitePointsWithinAnInfiniteRadius) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const auto points = line<TypeParam>({0, 1000, kInfinity, -5000});
    EXPECT_EQ(withAscendingMembers(this->oneJob(points, kInfinity, 3)).clusters,
              (Members{{0, 1, 3}}));
    EXPECT_EQ(this->twoJobs(points, kInfinity, 2).clusters, (Members{{0, 1, 3}}));
}

TYPED_TEST(DensityClusters, AreNoneWithinAnUndefinedRadius) {
    const auto points = line<TypeParam>({0, 0, 0});
    const double undefined = std::numeric_limits<double>::quiet_NaN();
    EXPECT_THAT(this->oneJob(points, undefined, 1).clusters, IsEmpty());
    EXPECT_THAT(this->twoJobs(points, undefined, 1).clusters, IsEmpty());
}

TEST(DensityClustering, StaysInPlace) {
    using Clustering = DensityClustering<2, float>;
    EXPECT_FALSE(std::is_copy_constructible_v<Clustering>);
    EXPECT_FALSE(std::is_copy_assignable_v<Clustering>);
}

}  // namespace
}  // namespace kelvora::test
