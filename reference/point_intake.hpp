// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/kd_point.hpp"
#include "reference/sliding_event_counter.hpp"

namespace kelvora::reference {

/// How the generators that work on points take an event, step by step: it is counted, and appended
/// as a point.
template <int DIM>
class PointIntake {
public:
    /// \param window_length  Microseconds.
    PointIntake(std::size_t capacity, std::size_t window_length, float scale_time_)
        : counter(window_length, kBins), scale_time(scale_time_) {
        points.reserve(capacity);
    }

    void processEvent(const Event2D* event);

    const std::vector<KDPoint<DIM, float>>& getPoints() const { return points; }

    std::uint32_t getEventCount() const { return counter.getEventCount(); }

    /// Forgets the points, and keeps their storage.
    void clearPoints() { points.clear(); }

private:
    static constexpr std::size_t kBins = 100;

    std::vector<KDPoint<DIM, float>> points;
    SlidingEventCounter counter;
    std::uint8_t rejected_polarity = 2;
    float scale_width = 1;
    float scale_height = 1;
    float scale_time;
};

extern template class PointIntake<2>;
extern template class PointIntake<3>;

}  // namespace kelvora::reference
