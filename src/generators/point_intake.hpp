// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "generators/point_scales.hpp"
#include "kelvora/kd_point.hpp"
#include "kelvora/sliding_event_counter.hpp"

/// \file
/// Turns events into points and buffers them, for the density and the centroid generator.

namespace kelvora {

/// Converts an event to a point. Times are absolute: a `float` represents single microseconds for 8
/// seconds.
template <int DIM, typename T, class EventT>
KDPoint<DIM, T> toPoint(const EventT& event, const PointScales& scales) {
    KDPoint<DIM, T> point;
    point.coordinates[0] = static_cast<T>(event.x) * static_cast<T>(scales.width);
    point.coordinates[1] = static_cast<T>(event.y) * static_cast<T>(scales.height);
    if constexpr (DIM == 3) {
        point.coordinates[2] = static_cast<T>(event.timestamp) * static_cast<T>(scales.time);
    }
    return point;
}

/// Counts an event and appends its point, unless it is null or has the rejected polarity.
// Flattened, because the calls would take as long as their work.
template <int DIM, typename T, class EventT>
[[gnu::flatten]] void takeEvent(const EventT* event, std::uint8_t rejected_polarity,
                                const PointScales& scales, SlidingEventCounter& counter,
                                std::vector<KDPoint<DIM, T>>& incoming_points) {
    if (event == nullptr || static_cast<std::uint8_t>(event->polarity) == rejected_polarity) {
        return;
    }
    counter.addEvent(event);
    incoming_points.push_back(toPoint<DIM, T>(*event, scales));
}

/// Takes at most `kMost` events of one batch. Their points must fit into
/// the capacity of `incoming_points`.
template <std::size_t kMost, int DIM, typename T, class EventT>
void takeSomeEvents(const EventT* events, std::size_t count, std::uint8_t rejected_polarity,
                    const PointScales& scales, SlidingEventCounter& counter,
                    std::vector<KDPoint<DIM, T>>& incoming_points) {
    std::array<unsigned long long, kMost> timestamps;
    std::array<KDPoint<DIM, T>, kMost> points;
    std::size_t taken = 0;
    for (std::size_t i = 0; i < count; ++i) {
        timestamps[taken] = events[i].timestamp;
        points[taken] = toPoint<DIM, T>(events[i], scales);
        // The next event overwrites a rejected one. No branch, because polarities
        // are hard to predict.
        taken += static_cast<std::uint8_t>(events[i].polarity) != rejected_polarity ? 1 : 0;
    }
    counter.addTimestamps(timestamps.data(), taken);
    const auto end = points.begin() + static_cast<std::ptrdiff_t>(taken);
    incoming_points.insert(incoming_points.end(), points.begin(), end);
}

/// Does the same as `takeEvent` for each event of a batch. A null batch is ignored.
template <int DIM, typename T, class EventT>
void takeEvents(const EventT* events, std::size_t count, std::uint8_t rejected_polarity,
                const PointScales& scales, SlidingEventCounter& counter,
                std::vector<KDPoint<DIM, T>>& incoming_points) {
    constexpr std::size_t kMost = 256;
    std::size_t done = events == nullptr ? count : 0;
    while (done < count) {
        const std::size_t room = incoming_points.capacity() - incoming_points.size();
        const std::size_t some = std::min({count - done, room, kMost});
        if (some > 0) {
            takeSomeEvents<kMost>(events + done, some, rejected_polarity, scales, counter,
                                  incoming_points);
            done += some;
        } else {
            // Allocates, if the event is not rejected. If that fails, the events before are taken,
            // as if they had been passed one by one.
            takeEvent(events + done, rejected_polarity, scales, counter, incoming_points);
            ++done;
        }
    }
}

/// Keeps only the last `count` points, moved to the front.
template <int DIM, typename T>
void keepNewest(std::vector<KDPoint<DIM, T>>& points, unsigned long long count) {
    if (points.size() > count) {
        const auto surplus = static_cast<std::ptrdiff_t>(points.size() - count);
        points.erase(points.begin(), points.begin() + surplus);
    }
}

/// Makes the incoming points the working points. Keeps as many of the newest as the counter and the
/// capacity allow.
template <int DIM, typename T>
void exchangePoints(std::vector<KDPoint<DIM, T>>& working_points,
                    std::vector<KDPoint<DIM, T>>& incoming_points,
                    const SlidingEventCounter& counter, unsigned long long max_capacity) {
    working_points.swap(incoming_points);
    incoming_points.clear();
    keepNewest(working_points, std::min<unsigned long long>(counter.getEventCount(), max_capacity));
}

/// Number of points to reserve for `max_capacity`: 1.5 times as many, so that nothing is
/// reallocated if clusters are generated a little late.
inline unsigned long long reserveSize(unsigned long long max_capacity) {
    constexpr unsigned long long kLargest = 0xAAAAAAAAAAAAAAA8;
    return max_capacity <= kLargest ? max_capacity + max_capacity / 2 + 1
                                    : std::numeric_limits<unsigned long long>::max();
}

/// Reserves both buffers, unless `max_capacity` is the largest number, which means no limit.
/// \throws std::runtime_error  with the class name, if there is not enough memory.
template <int DIM, typename T>
void reservePoints(std::vector<KDPoint<DIM, T>>& incoming_points,
                   std::vector<KDPoint<DIM, T>>& working_points, unsigned long long max_capacity,
                   const std::string& class_name) {
    if (max_capacity == std::numeric_limits<unsigned long long>::max()) {
        return;
    }
    try {
        incoming_points.reserve(reserveSize(max_capacity));
        working_points.reserve(reserveSize(max_capacity));
    } catch (const std::length_error& error) {
        throw std::runtime_error(class_name +
                                 ": Failed to reserve memory for points: " + error.what());
    } catch (const std::bad_alloc& error) {
        throw std::runtime_error(class_name +
                                 ": Failed to allocate memory for points: " + error.what());
    }
}

}  // namespace kelvora
