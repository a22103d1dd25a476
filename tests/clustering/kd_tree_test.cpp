// SPDX-License-Identifier: MIT
#include "kelvora/kd_tree.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

#include "reference/brute_force_density_clustering.hpp"
#include "reference/kd_tree.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <class Kind>
class KDTrees : public ::testing::Test {
public:
    using T = typename Kind::T;
    using Points = typename Kind::Points;
    using Tree = KDTree<Kind::kDim, T>;
    using Results = std::vector<nanoflann::ResultItem<std::size_t, T>>;

    /// Old results, which a search must clear.
    static Results leftovers() { return Results(3, {99, T{1}}); }

    static std::vector<std::size_t> neighbours(const Tree& tree, T radius, std::size_t index,
                                               bool sorted = false) {
        Results results = leftovers();
        const std::size_t count = tree.radiusSearchIndex(radius, results, sorted, index);
        EXPECT_EQ(count, results.size());
        std::vector<std::size_t> indices;
        for (const auto& result : results) {
            indices.push_back(result.first);
        }
        return indices;
    }

    static std::vector<std::size_t> ascendingNeighbours(const Tree& tree, T radius,
                                                        std::size_t index) {
        auto indices = neighbours(tree, radius, index);
        std::sort(indices.begin(), indices.end());
        return indices;
    }

    static void expectNothingIsFound(const Tree& tree) {
        Results results = leftovers();
        EXPECT_EQ(tree.radiusSearchIndex(T{5}, results, true, 0), 0U);
        EXPECT_THAT(results, IsEmpty());
        std::vector<std::size_t> indices = {9, 9};
        std::vector<T> dists = {T{9}};
        EXPECT_EQ(tree.knnSearchPoint(3, indices, dists, at<Kind>(0)), 0U);
        EXPECT_THAT(indices, ElementsAre(0, 0, 0));
        EXPECT_THAT(dists, ElementsAre(0, 0, 0));
    }
};
TYPED_TEST_SUITE(KDTrees, PointKinds, PointKindNames);

TYPED_TEST(KDTrees, FindNothingBeforeTheyAreBuilt) {
    const typename TestFixture::Tree tree;
    this->expectNothingIsFound(tree);
}

TYPED_TEST(KDTrees, FindNothingWithoutPoints) {
    const typename TestFixture::Points points;
    typename TestFixture::Tree tree;
    EXPECT_TRUE(tree.build(points, 1));
    EXPECT_EQ(tree.getPointsCount(), 0U);
    this->expectNothingIsFound(tree);
}

TYPED_TEST(KDTrees, FindPointsCloserThanTheRadius) {
    const auto points = line<TypeParam>({0, 3, 1, -1, 2, 8});
    typename TestFixture::Tree tree;
    EXPECT_TRUE(tree.build(points, 1));
    EXPECT_THAT(this->ascendingNeighbours(tree, 1.5, 0), ElementsAre(0, 2, 3));
    EXPECT_THAT(this->ascendingNeighbours(tree, 1.5, 5), ElementsAre(5));
    EXPECT_THAT(this->ascendingNeighbours(tree, 100, 5), ElementsAre(0, 1, 2, 3, 4, 5));
}

TYPED_TEST(KDTrees, DoNotFindPointsAtExactlyTheRadius) {
    typename TestFixture::Points points = {at<TypeParam>(0, 0), at<TypeParam>(3, 4)};
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    EXPECT_THAT(this->ascendingNeighbours(tree, 5, 0), ElementsAre(0));
    EXPECT_THAT(this->ascendingNeighbours(tree, 5.125, 0), ElementsAre(0, 1));
}

TYPED_TEST(KDTrees, DoNotEvenFindThePointItselfWithinRadiusZero) {
    const auto points = line<TypeParam>({0, 0, 0});
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    EXPECT_THAT(this->neighbours(tree, 0, 1), IsEmpty());
}

TYPED_TEST(KDTrees, ReportSquaredDistancesByAscendingOneIfSorted) {
    const auto points = line<TypeParam>({7, 0, 3, 1, 2});
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    auto results = this->leftovers();
    EXPECT_EQ(tree.radiusSearchIndex(4, results, true, 1), 4U);
    std::vector<typename TypeParam::T> distances;
    for (const auto& result : results) {
        distances.push_back(result.second);
    }
    EXPECT_THAT(distances, ElementsAre(0, 1, 4, 9));
    EXPECT_THAT(this->neighbours(tree, 4, 1, true), ElementsAre(1, 3, 4, 2));
}

TYPED_TEST(KDTrees, FindInTheOrderOfTheWalkIfNotSorted) {
    Random random(1);
    const auto points = randomGridPoints<TypeParam>(random, 300, -5, 20, 1);
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    const reference::KDTree<TypeParam::kDim, typename TypeParam::T> literal(points);
    for (std::size_t i = 0; i < points.size(); ++i) {
        ASSERT_EQ(this->neighbours(tree, 4, i), literal.neighboursOf(i, 4));
    }
}

TYPED_TEST(KDTrees, FindAllOfManyEqualPoints) {
    const typename TestFixture::Points points(1000, at<TypeParam>(2, 2, 2));
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    EXPECT_EQ(this->neighbours(tree, 1, 500).size(), 1000U);
}

TYPED_TEST(KDTrees, FindTheSameAsComparingAllPairs) {
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        Random random(seed);
        const auto points = randomGridPoints<TypeParam>(random, 150, -8, 16, 0.5);
        typename TestFixture::Tree tree;
        tree.build(points, 1);
        for (const double radius : {0.5, 1.0, 2.5, 6.0}) {
            const reference::Neighbourhoods<TypeParam::kDim, typename TypeParam::T> near(points,
                                                                                         radius);
            for (std::size_t i = 0; i < points.size(); ++i) {
                const auto found =
                    this->ascendingNeighbours(tree, static_cast<typename TypeParam::T>(radius), i);
                ASSERT_EQ(found, near.of(i)) << "seed " << seed << " radius " << radius;
            }
        }
    }
}

TYPED_TEST(KDTrees, FindTheClosestPointsByAscendingDistance) {
    const auto points = line<TypeParam>({10, 4, 0, 7, 5});
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    std::vector<std::size_t> indices = {42};
    std::vector<typename TypeParam::T> dists = {42, 42, 42, 42, 42};
    EXPECT_EQ(tree.knnSearchPoint(3, indices, dists, at<TypeParam>(4.25)), 3U);
    EXPECT_THAT(indices, ElementsAre(1, 4, 3));
    EXPECT_THAT(dists, ElementsAre(0.0625, 0.5625, 7.5625));
}

TYPED_TEST(KDTrees, FindAllPointsIfMoreAreRequested) {
    const auto points = line<TypeParam>({5, 1, 3});
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    std::vector<std::size_t> indices;
    std::vector<typename TypeParam::T> dists;
    EXPECT_EQ(tree.knnSearchPoint(5, indices, dists, at<TypeParam>(0)), 3U);
    EXPECT_THAT(indices, ElementsAre(1, 2, 0, 0, 0));
    EXPECT_THAT(dists, ElementsAre(1, 9, 25, 0, 0));
}

TYPED_TEST(KDTrees, FindNothingIfNoneIsRequested) {
    const auto points = line<TypeParam>({5, 1, 3});
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    std::vector<std::size_t> indices = {1, 2};
    std::vector<typename TypeParam::T> dists = {1, 2};
    EXPECT_EQ(tree.knnSearchPoint(0, indices, dists, at<TypeParam>(0)), 0U);
    EXPECT_THAT(indices, IsEmpty());
    EXPECT_THAT(dists, IsEmpty());
}

TYPED_TEST(KDTrees, FindTheSameClosestPointsAsSortingAll) {
    Random random(3);
    const auto points = randomGridPoints<TypeParam>(random, 500, -20, 40, 1);
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    for (std::size_t q = 0; q < 50; ++q) {
        std::vector<double> expected;
        for (const auto& point : points) {
            const double distance = point.euclideanDistance(points[q]);
            expected.push_back(distance);
        }
        std::sort(expected.begin(), expected.end());
        std::vector<std::size_t> indices;
        std::vector<typename TypeParam::T> dists;
        ASSERT_EQ(tree.knnSearchPoint(20, indices, dists, points[q]), 20U);
        for (std::size_t i = 0; i < 20; ++i) {
            ASSERT_DOUBLE_EQ(points[indices[i]].euclideanDistance(points[q]), expected[i]);
        }
    }
}

TYPED_TEST(KDTrees, GiveAccessToTheCallersPoints) {
    const auto points = line<TypeParam>({5, 1, 3});
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    EXPECT_EQ(tree.getPointsCount(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(&tree.getPoint(i), &points[i]);
    }
}

TYPED_TEST(KDTrees, ForgetTheOldPointsWhenBuiltAgain) {
    typename TestFixture::Tree tree;
    auto old = std::make_unique<typename TestFixture::Points>(50, at<TypeParam>(1));
    tree.build(*old, 1);
    const auto points = line<TypeParam>({0, 10, 10.5});
    EXPECT_TRUE(tree.build(points, 1));
    old.reset();
    EXPECT_EQ(tree.getPointsCount(), 3U);
    EXPECT_THAT(this->ascendingNeighbours(tree, 2, 1), ElementsAre(1, 2));
    std::vector<std::size_t> indices;
    std::vector<typename TypeParam::T> dists;
    EXPECT_EQ(tree.knnSearchPoint(9, indices, dists, at<TypeParam>(0)), 3U);
}

TYPED_TEST(KDTrees, FindNothingAfterTheyAreBuiltAgainWithoutPoints) {
    typename TestFixture::Tree tree;
    const typename TestFixture::Points points(50, at<TypeParam>(1));
    tree.build(points, 1);
    const typename TestFixture::Points nothing;
    EXPECT_TRUE(tree.build(nothing, 1));
    this->expectNothingIsFound(tree);
}

TYPED_TEST(KDTrees, AreTheSameForAnyNumberOfBuildingThreads) {
    Random random(5);
    const auto points = randomGridPoints<TypeParam>(random, 3000, 0, 100, 1);
    typename TestFixture::Tree reference;
    reference.build(points, 1);
    for (const int threads : {0, 2, 5}) {
        typename TestFixture::Tree tree;
        EXPECT_TRUE(tree.build(points, threads));
        for (std::size_t i = 0; i < points.size(); i += 10) {
            ASSERT_EQ(this->ascendingNeighbours(tree, 6, i),
                      this->ascendingNeighbours(reference, 6, i));
        }
    }
}

TYPED_TEST(KDTrees, CanBeSearchedByManyThreadsAtOnce) {
    Random random(6);
    const auto points = randomGridPoints<TypeParam>(random, 2000, 0, 50, 1);
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    std::vector<std::size_t> found(4, 0);
    std::vector<std::thread> threads;
    for (std::size_t& count : found) {
        threads.emplace_back([&] {
            typename TestFixture::Results results;
            for (std::size_t i = 0; i < points.size(); ++i) {
                count += tree.radiusSearchIndex(3, results, false, i);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_GT(found[0], points.size());
    EXPECT_THAT(found, ::testing::Each(found[0]));
}

TYPED_TEST(KDTrees, NeitherFindNorSearchAroundPointsThatAreNotFinite) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();
    const typename TestFixture::Points points = {
        at<TypeParam>(0, 0),          at<TypeParam>(kInfinity, 0), at<TypeParam>(0, -kInfinity),
        at<TypeParam>(0, kUndefined), at<TypeParam>(1, 0),         at<TypeParam>(kInfinity, 0)};
    typename TestFixture::Tree tree;
    tree.build(points, 1);
    for (const auto radius : {2.0, 1e30, kInfinity}) {
        const auto r = static_cast<typename TypeParam::T>(radius);
        EXPECT_THAT(this->ascendingNeighbours(tree, r, 0), ElementsAre(0, 4));
        for (const std::size_t not_finite : {1U, 2U, 3U, 5U}) {
            EXPECT_THAT(this->neighbours(tree, r, not_finite), IsEmpty());
        }
    }
    std::vector<std::size_t> indices;
    std::vector<typename TypeParam::T> dists;
    EXPECT_EQ(tree.knnSearchPoint(2, indices, dists, at<TypeParam>(0.75)), 2U);
    EXPECT_THAT(indices, ElementsAre(4, 0));
    EXPECT_EQ(tree.knnSearchPoint(6, indices, dists, at<TypeParam>(0.75)), 2U);
    EXPECT_EQ(tree.knnSearchPoint(1, indices, dists, at<TypeParam>(kUndefined, 1)), 0U);
    EXPECT_EQ(tree.knnSearchPoint(1, indices, dists, at<TypeParam>(kInfinity, 0)), 0U);
}

}  // namespace
}  // namespace kelvora::test
