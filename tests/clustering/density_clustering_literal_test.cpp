// SPDX-License-Identifier: MIT
// The library beside the literal passes over nanoflann, on sets of points of many kinds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "support/density_cases.hpp"
#include "support/literal_density_pass.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using Members = std::vector<std::vector<std::size_t>>;

/// A box as the rules of the pass make it, from the members in their order.
template <class Kind>
std::vector<typename Kind::T> expectedBox(const typename Kind::Points& points,
                                          const std::vector<std::size_t>& members, int jobs) {
    std::vector<typename Kind::T> box(2 * Kind::kDim);
    for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
        auto low = points[members[0]].coordinates[axis];
        auto high = jobs == 1 ? low : 0;
        for (std::size_t i = 1; i < members.size(); ++i) {
            low = std::min(low, points[members[i]].coordinates[axis]);
            high = std::max(high, points[members[i]].coordinates[axis]);
        }
        box[axis] = low;
        box[Kind::kDim + axis] = high - low;
    }
    return box;
}

template <class Kind>
class LiteralPasses : public ::testing::Test {
public:
    static void compare(const DensityCase<Kind>& set, int jobs, Members& found_members) {
        LiteralDensityPass<Kind> literal(set.points, set.eps,
                                         static_cast<std::size_t>(set.min_pts));
        const auto found = clusterPoints<Kind>(set.points, set.eps, set.min_pts, jobs);
        const auto in_order = jobs == 1 ? found : inOrderOfFirstMembers(found);
        ASSERT_EQ(in_order.clusters, jobs == 1 ? literal.run() : literal.runWithManyJobs());
        for (std::size_t c = 0; c < in_order.clusters.size(); ++c) {
            ASSERT_EQ(in_order.boxes[c], expectedBox<Kind>(set.points, in_order.clusters[c], jobs));
        }
        found_members = in_order.clusters;
    }

    static void compareMany(int rounds, std::size_t most_points) {
        for (const Scatter scatter : kScatters) {
            int with_clusters = 0;
            for (int round = 0; round < rounds; ++round) {
                Random random(static_cast<std::uint64_t>(round));
                const DensityCase<Kind> set(random, scatter, most_points);
                for (const int jobs : {1, 2}) {
                    Members found;
                    compare(set, jobs, found);
                    ASSERT_FALSE(testing::Test::HasFatalFailure())
                        << "round " << round << ", jobs " << jobs << ": " << set;
                    with_clusters += found.empty() ? 0 : 1;
                }
            }
            EXPECT_GT(with_clusters, rounds / 4);
        }
    }
};
TYPED_TEST_SUITE(LiteralPasses, PointKinds, PointKindNames);

TYPED_TEST(LiteralPasses, FindTheSameInSmallSets) {
    this->compareMany(300, 120);
}

TYPED_TEST(LiteralPasses, FindTheSameInLargerSets) {
    this->compareMany(20, 3000);
}

}  // namespace
}  // namespace kelvora::test
