// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora::benchmarks {

/// What the generators that work on points do with an event, as one would write it down first, to
/// measure the library against: each event divides the time since the one before by the length of a
/// bin, and is appended.
template <int DIM>
class LiteralPointIntake {
public:
    /// \param window_length  Microseconds.
    LiteralPointIntake(std::size_t capacity, std::size_t window_length_, float scale_time_)
        : bins(kBins, 0),
          bin_length(window_length_ / kBins),
          window_length(window_length_),
          scale_time(scale_time_) {
        points.reserve(capacity);
    }

    // Not inlined, as what it is compared with is not either.
    [[gnu::noinline]] void processEvent(const Event2D* event) {
        if (event == nullptr || event->polarity == rejected_polarity) {
            return;
        }
        count(event->timestamp);
        KDPoint<DIM, float>& point = points.emplace_back();
        point.coordinates[0] = static_cast<float>(event->x) * scale_width;
        point.coordinates[1] = static_cast<float>(event->y) * scale_height;
        if constexpr (DIM == 3) {
            point.coordinates[2] = static_cast<float>(event->timestamp) * scale_time;
        }
    }

    const std::vector<KDPoint<DIM, float>>& getPoints() const { return points; }

    std::uint32_t getEventCount() const { return event_count; }

    /// Forgets the points, and keeps their storage.
    void clearPoints() { points.clear(); }

    /// Whether the clusters of a generator hold the same points, in any order.
    bool agreesWith(const std::vector<std::vector<KDPoint<DIM, float>>>& clusters) const {
        std::vector<std::array<float, DIM>> own;
        std::vector<std::array<float, DIM>> others;
        for (const auto& point : points) {
            own.push_back(point.coordinates);
        }
        for (const auto& cluster : clusters) {
            for (const auto& point : cluster) {
                others.push_back(point.coordinates);
            }
        }
        std::sort(own.begin(), own.end());
        std::sort(others.begin(), others.end());
        return !own.empty() && own == others;
    }

private:
    static constexpr std::size_t kBins = 100;

    void count(std::uint64_t timestamp) {
        if (is_first) {
            is_first = false;
            last_timestamp = timestamp;
            ++bins[current_bin];
            ++event_count;
            return;
        }
        const std::uint64_t elapsed = timestamp - last_timestamp;
        const std::uint64_t steps = elapsed / bin_length;
        if (steps > 0) {
            advance(elapsed, steps);
        }
        if (bins[current_bin] < std::numeric_limits<std::uint32_t>::max()) {
            ++bins[current_bin];
            ++event_count;
        }
        last_timestamp = timestamp;
    }

    void advance(std::uint64_t elapsed, std::uint64_t steps) {
        if (elapsed >= window_length) {
            bins.assign(kBins, 0);
            event_count = 0;
        } else {
            for (std::uint64_t i = 0; i < steps && i < kBins; ++i) {
                std::uint32_t& bin = bins[(current_bin + 1 + i) % kBins];
                event_count -= bin;
                bin = 0;
            }
        }
        current_bin = (current_bin + steps) % kBins;
    }

    std::vector<KDPoint<DIM, float>> points;
    std::vector<std::uint32_t> bins;
    std::size_t current_bin = 0;
    std::size_t bin_length;
    std::size_t window_length;
    std::uint64_t last_timestamp = 0;
    std::uint32_t event_count = 0;
    bool is_first = true;
    std::uint8_t rejected_polarity = 2;
    float scale_width = 1;
    float scale_height = 1;
    float scale_time;
};

}  // namespace kelvora::benchmarks
