// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "support/density_models.hpp"
#include "support/points.hpp"
#include "support/rounds.hpp"

namespace kelvora::test {
namespace {

/// A small set on a grid, so that some points coincide, and some are exactly the radius apart.
template <class Kind>
struct RandomCase {
    explicit RandomCase(Random& random) {
        constexpr std::array<double, 8> kRadii = {0.5, 1, 1.5, 2, 2.5, 3, 5, 1.4142135623730951};
        constexpr std::array<double, 4> kUnits = {1, 0.5, 0.25, 2};
        const double unit = kUnits[random() % kUnits.size()];
        const int side = randomInt(random, 1, 14);
        const int low = randomInt(random, -2 * side, side);
        const auto count = static_cast<std::size_t>(randomInt(random, 0, 90));
        points = randomGridPoints<Kind>(random, count, low, side, unit);
        eps = unit * kRadii[random() % kRadii.size()];
        min_pts = randomInt(random, 1, 7);
    }

    typename Kind::Points points;
    double eps;
    int min_pts;
};

/// Statistics of the cases of a run, to detect trivial ones.
struct Variety {
    template <typename T>
    void add(const Clustering<T>& found, std::size_t points) {
        std::size_t members = 0;
        for (const auto& cluster : found.clusters) {
            members += cluster.size();
        }
        none += found.clusters.empty() ? 1 : 0;
        several += found.clusters.size() > 1 ? 1 : 0;
        with_noise += members > 0 && members < points ? 1 : 0;
    }
    int none = 0;
    int several = 0;
    int with_noise = 0;
};

template <class Kind>
class ThousandRandomSets : public ::testing::Test {
public:
    static void compareWithModels(std::uint64_t first_seed) {
        constexpr std::array<int, 4> kJobs = {2, 3, 4, 16};
        Variety variety;
        for (std::uint64_t seed = first_seed; seed < first_seed + rounds(1000U); ++seed) {
            Random random(seed);
            const RandomCase<Kind> set(random);
            const auto one = modelOfOneJob<Kind>(set.points, set.eps, set.min_pts);
            ASSERT_EQ(
                withAscendingMembers(clusterPoints<Kind>(set.points, set.eps, set.min_pts, 1)), one)
                << "seed " << seed;
            const int jobs = kJobs[seed % kJobs.size()];
            const auto many = modelOfManyJobs<Kind>(set.points, set.eps, set.min_pts);
            ASSERT_EQ(
                inOrderOfFirstMembers(clusterPoints<Kind>(set.points, set.eps, set.min_pts, jobs)),
                many)
                << "seed " << seed << " jobs " << jobs;
            variety.add(one, set.points.size());
            variety.add(many, set.points.size());
        }
        EXPECT_GT(variety.none, rounds(100));
        EXPECT_GT(variety.several, rounds(200));
        EXPECT_GT(variety.with_noise, rounds(300));
    }
};
TYPED_TEST_SUITE(ThousandRandomSets, PointKinds, PointKindNames);

TYPED_TEST(ThousandRandomSets, GiveTheClustersOfTheModels) {
    this->compareWithModels(0);
}

TYPED_TEST(ThousandRandomSets, GiveTheClustersOfTheModelsAgain) {
    this->compareWithModels(1000);
}

TYPED_TEST(ThousandRandomSets, GiveTheClustersOfTheModelsOnceMore) {
    this->compareWithModels(2000);
}

TYPED_TEST(ThousandRandomSets, GiveTheSameClustersForAnyNumberOfJobsAboveOne) {
    for (std::uint64_t seed = 5000; seed < 5100; ++seed) {
        Random random(seed);
        const RandomCase<TypeParam> set(random);
        const auto many = modelOfManyJobs<TypeParam>(set.points, set.eps, set.min_pts);
        for (const int jobs : {2, 3, 4, 16}) {
            ASSERT_EQ(inOrderOfFirstMembers(
                          clusterPoints<TypeParam>(set.points, set.eps, set.min_pts, jobs)),
                      many)
                << "seed " << seed << " jobs " << jobs;
        }
    }
}

template <class Kind>
class LargerRandomSets : public ::testing::Test {};
TYPED_TEST_SUITE(LargerRandomSets, PointKinds, PointKindNames);

TYPED_TEST(LargerRandomSets, GiveTheClustersOfTheModels) {
    for (std::uint64_t seed = 0; seed < 10; ++seed) {
        Random random(seed);
        const int side = TypeParam::kDim == 2 ? 40 : 13;
        const auto points = randomGridPoints<TypeParam>(random, 1500, -side / 2, side, 1);
        const double eps = randomInt(random, 2, 4) * 0.5;
        const int min_pts = randomInt(random, 3, 7);
        ASSERT_EQ(withAscendingMembers(clusterPoints<TypeParam>(points, eps, min_pts, 1)),
                  modelOfOneJob<TypeParam>(points, eps, min_pts))
            << "seed " << seed;
        ASSERT_EQ(inOrderOfFirstMembers(clusterPoints<TypeParam>(points, eps, min_pts, 4)),
                  modelOfManyJobs<TypeParam>(points, eps, min_pts))
            << "seed " << seed;
    }
}

}  // namespace
}  // namespace kelvora::test
