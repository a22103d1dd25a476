// SPDX-License-Identifier: MIT
#include "generators/cell_counters.hpp"

#include <gmock/gmock.h>

#include <array>
#include <cstddef>
#include <cstdint>

// The steps of counting are tested with the grid generator. This is only about a pause.

namespace kelvora {
namespace {

using ::testing::ElementsAre;

TEST(EventCounting, ChangesNoCounterWhileItIsPaused) {
    for (const std::size_t positive_offset : {0U, 1U}) {
        std::array<std::uint8_t, 3> pixels = {0, 1, 255};
        std::array<std::uint16_t, 4> cells = {0, 1, 65534, 65535};
        const CellCounters counters = {cells.data(), 4, positive_offset};
        const EventCounting counting = {{pixels.data(), 3, 255, 1}, {counters, 1}, {counters, 0}};
        const EventCounting paused = counting.paused();
        EXPECT_FALSE(counting.isPaused());
        EXPECT_TRUE(paused.isPaused());
        for (std::size_t x = 0; x < pixels.size(); ++x) {
            EXPECT_EQ(paused.add_to_pixel(x, 0), 0U) << x;
        }
        for (std::size_t col = 0; col < cells.size() >> positive_offset; ++col) {
            for (const bool positive : {false, true}) {
                EXPECT_TRUE(paused.add_to_cell(0, col, positive, 0)) << col;
                EXPECT_FALSE(paused.is_cell_active(0, col)) << col;
            }
        }
        EXPECT_THAT(pixels, ElementsAre(0, 1, 255));
        EXPECT_THAT(cells, ElementsAre(0, 1, 65534, 65535));
    }
}

}  // namespace
}  // namespace kelvora
