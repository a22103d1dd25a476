// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace kelvora::reference {

/// The rules of `kelvora::SlidingEventCounter` step by step: each event divides the time since the
/// one before by the length of a bin, and clears the bins in between one after the other. All in the
/// header, to be inlined where events are taken in.
class SlidingEventCounter {
public:
    /// As in the library, but not checked: there must be at least as many microseconds as bins.
    SlidingEventCounter(std::size_t window_length_, std::size_t num_bins)
        : bins(num_bins, 0), bin_length(window_length_ / num_bins), window_length(window_length_) {}

    void addTimestamp(std::uint64_t timestamp) {
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

    std::uint32_t getEventCount() const { return event_count; }

private:
    void advance(std::uint64_t elapsed, std::uint64_t steps) {
        if (elapsed >= window_length) {
            bins.assign(bins.size(), 0);
            event_count = 0;
        } else {
            for (std::uint64_t i = 0; i < steps && i < bins.size(); ++i) {
                std::uint32_t& bin = bins[(current_bin + 1 + i) % bins.size()];
                event_count -= bin;
                bin = 0;
            }
        }
        current_bin = (current_bin + steps) % bins.size();
    }

    std::vector<std::uint32_t> bins;
    std::size_t current_bin = 0;
    std::size_t bin_length;
    std::size_t window_length;
    std::uint64_t last_timestamp = 0;
    std::uint32_t event_count = 0;
    bool is_first = true;
};

}  // namespace kelvora::reference
