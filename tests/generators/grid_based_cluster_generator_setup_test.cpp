// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <climits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "kelvora/grid_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/event_builders.hpp"
#include "support/grid_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;

TEST(GridGeneratorSetup, MakesGeneratorsThatStayInPlace) {
    EXPECT_FALSE(std::is_copy_constructible_v<GridBasedClusterGenerator>);
    EXPECT_FALSE(std::is_copy_assignable_v<GridBasedClusterGenerator>);
    EXPECT_FALSE(std::is_move_constructible_v<GridBasedClusterGenerator>);
    EXPECT_FALSE(std::is_move_assignable_v<GridBasedClusterGenerator>);
    EXPECT_FALSE(std::is_default_constructible_v<GridBasedClusterGenerator>);
}

TEST(GridGeneratorSetup, HidesAllStateBehindOnePointer) {
    EXPECT_EQ(sizeof(GridBasedClusterGenerator), 2 * sizeof(void*));
}

TEST(GridGeneratorSetup, LetsDerivedGeneratorsBeDestroyedThroughTheBase) {
    class Derived : public GridBasedClusterGenerator {
    public:
        explicit Derived(bool& destroyed_)
            : GridBasedClusterGenerator(8, 8, 2, 2, 8, 0, POLARITY_FREE, false, 1),
              destroyed(destroyed_) {}
        ~Derived() override { destroyed = true; }

    private:
        bool& destroyed;
    };
    EXPECT_TRUE(std::has_virtual_destructor_v<GridBasedClusterGenerator>);
    bool destroyed = false;
    {
        const std::unique_ptr<GridBasedClusterGenerator> generator =
            std::make_unique<Derived>(destroyed);
    }
    EXPECT_TRUE(destroyed);
}

TEST(GridGeneratorSetup, TakesTheLargestSizeBeforeTheSmallest) {
    GridBasedClusterGenerator generator(40, 40, 4, 4, 8, 5, POLARITY_FREE, false, 1);
    feed(generator, positiveEvent(0, 0));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 8, 8}));
}

TEST(GridGeneratorSetup, AcceptsAnyFilterType) {
    EXPECT_NO_THROW(GridSettings().filter(static_cast<EventFilterType>(4)).build());
    EXPECT_NO_THROW(GridSettings().filter(static_cast<EventFilterType>(0xFFFFFFFF)).build());
}

TEST(GridGeneratorSetup, AcceptsAnyClusterSizes) {
    EXPECT_NO_THROW(GridSettings().clusterSizes(INT_MAX, INT_MIN).build());
}

struct RefusedSizes {
    int sensor_width;
    int sensor_height;
    int cell_width;
    int cell_height;
};

std::ostream& operator<<(std::ostream& out, const RefusedSizes& sizes) {
    return out << "sensor " << sizes.sensor_width << 'x' << sizes.sensor_height << " cells "
               << sizes.cell_width << 'x' << sizes.cell_height;
}

class GridGeneratorSetupOf : public ::testing::TestWithParam<RefusedSizes> {};

TEST_P(GridGeneratorSetupOf, SizesBelowOneIsRefused) {
    const auto [sensor_width, sensor_height, cell_width, cell_height] = GetParam();
    try {
        GridSettings().sensor(sensor_width, sensor_height).cells(cell_width, cell_height).build();
        FAIL() << "nothing was thrown";
    } catch (const std::invalid_argument& error) {
        EXPECT_EQ(error.what(), std::string("Invalid cell size or sensor size"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Refused, GridGeneratorSetupOf,
    ::testing::Values(RefusedSizes{10, 10, 0, 4}, RefusedSizes{10, 10, 4, 0},
                      RefusedSizes{10, 10, 0, 0}, RefusedSizes{10, 10, -1, 4},
                      RefusedSizes{10, 10, 4, -1}, RefusedSizes{10, 10, -4, -4},
                      RefusedSizes{10, 10, INT_MIN, 4}, RefusedSizes{10, 10, 4, INT_MIN},
                      RefusedSizes{0, 10, 4, 4}, RefusedSizes{10, 0, 4, 4},
                      RefusedSizes{0, 0, 4, 4}, RefusedSizes{-1, 10, 4, 4},
                      RefusedSizes{10, -1, 4, 4}, RefusedSizes{-10, -10, -4, -4},
                      RefusedSizes{-10, -10, 4, 4}, RefusedSizes{INT_MIN, 10, 4, 4},
                      RefusedSizes{10, INT_MIN, 4, 4}, RefusedSizes{INT_MIN, INT_MIN, -1, -1},
                      RefusedSizes{-1, -1, INT_MIN, INT_MIN}, RefusedSizes{0, 10, 1, 1},
                      RefusedSizes{-1, 10, INT_MAX, INT_MAX}, RefusedSizes{INT_MIN, 10, INT_MAX, 4},
                      RefusedSizes{INT_MAX, 0, 0, 1}));

TEST(GridGeneratorSetup, AcceptsASingleCellOfOnePixel) {
    auto generator = GridSettings().sensor(1, 1).cells(1, 1).build();
    feed(generator, positiveEvent(0, 0));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 1, 1}));
}

TEST(GridGeneratorSetup, AcceptsCellsOfTheLargestSize) {
    auto generator =
        GridSettings().sensor(10, 6).cells(INT_MAX, INT_MAX).clusterSizes(INT_MAX, INT_MAX).build();
    feed(generator, positiveEvent(9, 5));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{0, 0, 10, 6}));
}

TEST(GridGeneratorSetup, AcceptsCellsWiderThanHigh) {
    auto generator = GridSettings().sensor(40, 40).cells(10, 2).build();
    feed(generator, positiveEvent(25, 25));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{20, 24, 20, 4}));
}

TEST(GridGeneratorSetup, AcceptsSensorsOfASingleRowOrColumn) {
    auto row = GridSettings().sensor(40, 1).build();
    feed(row, positiveEvent(38, 0));
    EXPECT_THAT(boxesOf(generate(row)), ElementsAre(Box{36, 0, 4, 1}));
    auto column = GridSettings().sensor(1, 40).build();
    feed(column, positiveEvent(0, 38));
    EXPECT_THAT(boxesOf(generate(column)), ElementsAre(Box{0, 36, 1, 4}));
}

TEST(GridGeneratorSetup, AcceptsSensorsBeyondTheLargestPixelPosition) {
    auto generator = GridSettings().sensor(70'000, 1).cells(1, 1).build();
    feed(generator, positiveEvent(65'535, 0));
    EXPECT_THAT(boxesOf(generate(generator)), ElementsAre(Box{65'535, 0, 2, 1}));
}

}  // namespace
}  // namespace kelvora::test
