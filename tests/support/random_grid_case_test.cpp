// SPDX-License-Identifier: MIT
#include "support/random_grid_case.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "reference/grid_based_cluster_generator.hpp"
#include "support/feeding.hpp"

namespace kelvora::test {
namespace {

/// A generator that is set up wrongly stands in for one with a mistake.
struct Mistake {
    std::string name;
    std::function<void(GridSettings&)> make;
};

std::ostream& operator<<(std::ostream& out, const Mistake& mistake) {
    return out << mistake.name;
}

class WrongGenerator : public ::testing::TestWithParam<Mistake> {};

TEST_P(WrongGenerator, ShowsInTheComparison) {
    int differing = 0;
    for (std::uint64_t seed = 0; seed < 400; ++seed) {
        const GridCase grid_case = randomGridCase(seed);
        GridSettings wrong = grid_case.settings;
        GetParam().make(wrong);
        differing += compareWithModel(grid_case, wrong).has_value() ? 1 : 0;
    }
    EXPECT_GE(differing, 20);
}

INSTANTIATE_TEST_SUITE_P(
    With, WrongGenerator,
    ::testing::Values(
        Mistake{"HigherThreshold", [](GridSettings& wrong) { ++wrong.activation_threshold; }},
        Mistake{"WiderCells", [](GridSettings& wrong) { ++wrong.cell_width; }},
        Mistake{"HigherCells", [](GridSettings& wrong) { ++wrong.cell_height; }},
        Mistake{"LargerMinimum", [](GridSettings& wrong) { ++wrong.min_cluster_size; }},
        Mistake{"SmallerMaximum", [](GridSettings& wrong) { --wrong.max_cluster_size; }},
        Mistake{"OtherPixelCounting",
                [](GridSettings& wrong) { wrong.count_pixel_once = !wrong.count_pixel_once; }},
        Mistake{"OtherPolarityMode", [](GridSettings& wrong) {
                    wrong.filter_type =
                        wrong.filter_type == POLARITY_SEPARATE ? POLARITY_FREE : POLARITY_SEPARATE;
                }}));

TEST(RandomGridCase, IsTheSameForTheSameSeed) {
    const GridCase first = randomGridCase(42);
    const GridCase second = randomGridCase(42);
    EXPECT_EQ(first.settings.sensor_width, second.settings.sensor_width);
    ASSERT_EQ(first.batches.size(), second.batches.size());
    EXPECT_EQ(first.batches[0].events.size(), second.batches[0].events.size());
}

TEST(RandomGridCase, MostlyHasClustersToCompare) {
    std::size_t clusters = 0;
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        const GridCase grid_case = randomGridCase(seed);
        auto model = grid_case.settings.build<reference::GridBasedClusterGenerator>();
        std::vector<ClusterGeometry> found;
        for (const GridCase::Batch& batch : grid_case.batches) {
            feedOneByOne(model, batch.events);
            model.generateClusters(0, found);
            clusters += found.size();
        }
    }
    EXPECT_GE(clusters, 300U);
}

}  // namespace
}  // namespace kelvora::test
