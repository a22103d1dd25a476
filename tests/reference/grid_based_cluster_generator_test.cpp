// SPDX-License-Identifier: MIT
#include "reference/grid_based_cluster_generator.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/feeding.hpp"
#include "support/grid_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Model = reference::GridBasedClusterGenerator;

std::vector<Box> boxesFrom(Model& model) {
    std::vector<ClusterGeometry> clusters;
    model.generateClusters(7, clusters);
    return boxesOf(clusters);
}

/// The clusters of events in 12 x 12 cells of a pixel; each event marks two rows and two columns.
std::vector<Box> clustersOfCells(const std::vector<std::pair<int, int>>& cells) {
    auto model = GridSettings().sensor(12, 12).cells(1, 1).build<Model>();
    std::vector<Event2D> events;
    for (const auto& [row, col] : cells) {
        events.push_back(positiveEvent(col, row));
    }
    feedOneByOne(model, events);
    return boxesFrom(model);
}

TEST(ReferenceGrid, ReportsClustersComputedByHand) {
    // The last cell column and row are two pixels wide and high.
    auto model = GridSettings().sensor(10, 10).cells(4, 4).threshold(2).build<Model>();
    feedOneByOne<Model, Event2D>(
        model, {positiveEvent(9, 0), negativeEvent(1, 9), positiveEvent(9, 0), negativeEvent(1, 9),
                positiveEvent(5, 5)});
    EXPECT_THAT(boxesFrom(model), ElementsAre(Box{8, 0, 2, 8}, Box{0, 8, 8, 2}));
    EXPECT_THAT(boxesFrom(model), IsEmpty());
}

TEST(ReferenceGrid, KeepsMarkedCellsThroughAReset) {
    auto model = GridSettings().threshold(2).build<Model>();
    feedOneByOne<Model, Event2D>(model,
                                 {positiveEvent(0, 0), positiveEvent(0, 0), positiveEvent(20, 20)});
    model.reset();
    EXPECT_THAT(model.getPixelCounts(), Each(0));
    feedOneByOne<Model, Event2D>(model, {positiveEvent(20, 20)});
    EXPECT_THAT(boxesFrom(model), ElementsAre(Box{0, 0, 8, 8}));
}

TEST(ReferenceGrid, JoinsCellsAtEdgesButNotAtCorners) {
    EXPECT_THAT(clustersOfCells({{0, 0}, {0, 2}, {2, 4}, {4, 4}}),
                ElementsAre(Box{0, 0, 4, 2}, Box{4, 2, 2, 4}));
}

TEST(ReferenceGrid, FollowsASpiralToItsEnd) {
    EXPECT_THAT(
        clustersOfCells({{0, 0},  {0, 2},  {0, 4},   {0, 6},  {0, 8},  {0, 10}, {2, 10}, {4, 10},
                         {6, 10}, {8, 10}, {10, 10}, {10, 8}, {10, 6}, {10, 4}, {10, 2}, {10, 0},
                         {8, 0},  {6, 0},  {4, 0},   {4, 2},  {4, 4},  {4, 6},  {6, 6}}),
        ElementsAre(Box{0, 0, 12, 12}));
}

TEST(ReferenceGrid, IgnoresThePolarityOfItsFilter) {
    auto positive_free = GridSettings().filter(POSITIVE_FREE).build<Model>();
    auto negative_free = GridSettings().filter(NEGATIVE_FREE).build<Model>();
    for (Model* model : {&positive_free, &negative_free}) {
        feedOneByOne<Model, Event2D>(*model, {positiveEvent(0, 0), negativeEvent(20, 20)});
    }
    EXPECT_THAT(boxesFrom(positive_free), ElementsAre(Box{20, 20, 8, 8}));
    EXPECT_THAT(boxesFrom(negative_free), ElementsAre(Box{0, 0, 8, 8}));
}

TEST(ReferenceGrid, NeedsEnoughEventsOfEachPolarityIfTheyAreSeparate) {
    auto model = GridSettings().filter(POLARITY_SEPARATE).threshold(1).build<Model>();
    feedOneByOne<Model, Event2D>(
        model, {positiveEvent(0, 0), positiveEvent(20, 20), negativeEvent(20, 20)});
    EXPECT_THAT(boxesFrom(model), ElementsAre(Box{20, 20, 8, 8}));
}

TEST(ReferenceGrid, CountsAtMost255EventsOfAPixel) {
    auto model = GridSettings().sensor(2, 1).build<Model>();
    feedOneByOne(model, std::vector<Event2D>(300, positiveEvent(1, 0)));
    EXPECT_THAT(model.getPixelCounts(), ElementsAre(0, 255));
}

}  // namespace
}  // namespace kelvora::test
