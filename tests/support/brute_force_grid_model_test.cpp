// SPDX-License-Identifier: MIT
#include "support/brute_force_grid_model.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/random_grid_case.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<ClusterGeometry> threeClusters() {
    return {{0, 0, 8, 8, 7}, {16, 0, 8, 12, 7}, {4, 20, 12, 8, 7}};
}

TEST(ConnectedComponents, JoinEdgesButNotCorners) {
    EXPECT_THAT(connectedComponents({{0, 0}, {0, 1}, {1, 2}, {2, 2}}),
                ElementsAre(std::set<Cell>{{0, 0}, {0, 1}}, std::set<Cell>{{1, 2}, {2, 2}}));
}

TEST(ConnectedComponents, FollowASpiralToItsEnd) {
    const std::set<Cell> spiral = {{0, 0}, {0, 1}, {0, 2}, {0, 3}, {0, 4}, {1, 4},
                                   {2, 4}, {3, 4}, {4, 4}, {4, 3}, {4, 2}, {4, 1},
                                   {4, 0}, {3, 0}, {2, 0}, {2, 1}, {2, 2}};
    EXPECT_THAT(connectedComponents(spiral), ElementsAre(spiral));
}

TEST(ConnectedComponents, AreNoneWithoutCells) {
    EXPECT_THAT(connectedComponents({}), IsEmpty());
}

TEST(BruteForceGridModel, ReportsWhatWasWorkedOutByHand) {
    // The last cell column and row are two pixels wide and high.
    BruteForceGridModel model(GridSettings().sensor(10, 10).cells(4, 4).threshold(2));
    for (int i = 0; i < 2; ++i) {
        model.processEvent(positiveEvent(9, 0));
        model.processEvent(negativeEvent(1, 9));
    }
    model.processEvent(positiveEvent(5, 5));
    EXPECT_THAT(boxesOf(model.generateClusters(7)), ElementsAre(Box{8, 0, 2, 8}, Box{0, 8, 8, 2}));
    EXPECT_THAT(model.generateClusters(8), IsEmpty());
}

TEST(BruteForceGridModel, KeepsMarkedCellsThroughAReset) {
    BruteForceGridModel model(GridSettings().threshold(2));
    model.processEvent(positiveEvent(0, 0));
    model.processEvent(positiveEvent(0, 0));
    model.processEvent(positiveEvent(20, 20));
    model.reset();
    model.processEvent(positiveEvent(20, 20));
    EXPECT_THAT(boxesOf(model.generateClusters(7)), ElementsAre(Box{0, 0, 8, 8}));
}

TEST(FirstDifference, IsNoneBetweenEqualLists) {
    EXPECT_EQ(firstDifference(threeClusters(), threeClusters()), std::nullopt);
    EXPECT_EQ(firstDifference({}, {}), std::nullopt);
}

TEST(FirstDifference, IsFoundWhenTwoClustersAreSwapped) {
    for (const auto& [first, second] :
         std::vector<std::pair<std::size_t, std::size_t>>{{0, 1}, {0, 2}, {1, 2}}) {
        auto clusters = threeClusters();
        std::swap(clusters[first], clusters[second]);
        EXPECT_NE(firstDifference(clusters, threeClusters()), std::nullopt);
    }
}

TEST(FirstDifference, IsFoundWhenAClusterIsMissingOrTooMany) {
    auto fewer = threeClusters();
    fewer.pop_back();
    EXPECT_NE(firstDifference(fewer, threeClusters()), std::nullopt);
    EXPECT_NE(firstDifference(threeClusters(), fewer), std::nullopt);
    EXPECT_NE(firstDifference({}, threeClusters()), std::nullopt);
}

TEST(FirstDifference, IsFoundInEveryField) {
    const std::vector<std::function<void(ClusterGeometry&)>> alterations = {
        [](ClusterGeometry& cluster) { cluster.x += 1; },
        [](ClusterGeometry& cluster) { cluster.y += 1; },
        [](ClusterGeometry& cluster) { cluster.z += 1; },
        [](ClusterGeometry& cluster) { cluster.width += 1; },
        [](ClusterGeometry& cluster) { cluster.height += 1; },
        [](ClusterGeometry& cluster) { cluster.depth += 1; },
        [](ClusterGeometry& cluster) { cluster.start_time += 1; },
        [](ClusterGeometry& cluster) { cluster.duration += 1; },
        [](ClusterGeometry& cluster) { cluster.timestamp += 1; }};
    for (const auto& alter : alterations) {
        auto clusters = threeClusters();
        alter(clusters.back());
        EXPECT_NE(firstDifference(clusters, threeClusters()), std::nullopt);
    }
}

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
        BruteForceGridModel model(grid_case.settings);
        for (const GridCase::Batch& batch : grid_case.batches) {
            for (const Event2D& event : batch.events) {
                model.processEvent(event);
            }
            clusters += model.generateClusters(0).size();
        }
    }
    EXPECT_GE(clusters, 300U);
}

}  // namespace
}  // namespace kelvora::test
