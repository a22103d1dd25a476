// SPDX-License-Identifier: MIT
#include "reference/sliding_event_counter.hpp"

namespace kelvora::reference {

void SlidingEventCounter::advance(std::uint64_t elapsed, std::uint64_t steps) {
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

}  // namespace kelvora::reference
