// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

/// \file
/// How the grid generator counts an event: in the counter of its pixel, and in a counter of its
/// cell.

namespace kelvora {

/// The counters of cells: one per cell, or one per polarity side by side.
///
/// The choice is made once per generator, and stored as an offset. With one counter, the positive
/// counter is the same as the negative one, at `positive_offset` 0. So counting needs neither an
/// indirect call nor a branch on the polarity, which is mispredicted half of the time.
struct CellCounters {
    std::uint16_t* counts = nullptr;
    std::size_t cols = 0;
    std::size_t positive_offset = 0;  ///< 1 if the polarities are counted separately, else 0.

    std::uint16_t* of(std::size_t row, std::size_t col) const {
        return counts + ((row * cols + col) << positive_offset);
    }

    void clear(std::size_t row, std::size_t col) const {
        std::uint16_t* const cell = of(row, col);
        cell[0] = 0;
        cell[positive_offset] = 0;
    }
};

/// Counts `events` (0 or 1) of one polarity in the cell (row, col).
struct AddToCell {
    CellCounters counters;
    std::uint32_t arrival = 1;  ///< The activation threshold, but at least 1.

    /// Returns whether this event made the counter reach the threshold.
    bool operator()(std::size_t row, std::size_t col, bool positive, unsigned events) const {
        std::uint16_t& count =
            counters.of(row, col)[counters.positive_offset & std::size_t{positive}];
        const unsigned counted = count + events;
        count = static_cast<std::uint16_t>(counted);
        // Without an event all bits of the left side are set, which no threshold equals (but see
        // `EventCounting::paused`). Nor does a threshold equal a counter that has wrapped to 0.
        return (counted | (events - 1)) == arrival;
    }
};

/// Returns whether all counters of the cell (row, col) have reached the threshold.
struct IsCellActive {
    CellCounters counters;
    std::uint32_t activation_threshold = 0;

    bool operator()(std::size_t row, std::size_t col) const {
        const std::uint16_t* const cell = counters.of(row, col);
        return cell[0] >= activation_threshold &&
               cell[counters.positive_offset] >= activation_threshold;
    }
};

/// Counts the events of pixels, up to a largest count.
struct AddToPixel {
    std::uint8_t* counts = nullptr;
    std::size_t width = 0;
    std::uint8_t largest_count = 255;
    /// 1 if the cell counts all events of a pixel, 0 if only the first.
    std::uint8_t repeated = 1;

    /// Returns the number of events that the cell must count: 0 or 1.
    unsigned operator()(std::size_t x, std::size_t y) const {
        std::uint8_t& count = counts[y * width + x];
        // No branches, because it is hard to predict whether a pixel already has events.
        const unsigned counted = count < largest_count ? 1 : 0;
        count = static_cast<std::uint8_t>(count + counted);
        return counted | repeated;
    }
};

/// All steps of counting an event.
struct EventCounting {
    AddToPixel add_to_pixel;
    AddToCell add_to_cell;
    IsCellActive is_cell_active;

    /// Returns steps that change no counter. `add_to_cell` is true for every event, and
    /// `is_cell_active` for no cell. So the first event after a pause is noticed without a check
    /// that would take time for all the others.
    EventCounting paused() const {
        EventCounting result = *this;
        result.add_to_pixel.largest_count = 0;
        result.add_to_pixel.repeated = 0;
        result.add_to_cell.arrival = std::numeric_limits<std::uint32_t>::max();
        result.is_cell_active.activation_threshold = std::numeric_limits<std::uint32_t>::max();
        return result;
    }

    bool isPaused() const { return add_to_pixel.largest_count == 0; }
};

}  // namespace kelvora
