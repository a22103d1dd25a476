// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "reference/feeding.hpp"
#include "support/event_builders.hpp"

namespace kelvora::test {

using reference::feedOneByOne;

/// In batches that end at random places; some of them are empty.
template <class Generator, class Event>
void feedInBatches(Generator& generator, const std::vector<Event>& events, Random& random) {
    constexpr std::size_t kLargestBatch = 700;
    std::size_t done = 0;
    while (done < events.size()) {
        const auto most = std::min(events.size() - done, kLargestBatch);
        const auto count = static_cast<std::size_t>(randomInt(random, 0, static_cast<int>(most)));
        generator.processEvents(events.data() + done, count);
        done += count;
    }
}

}  // namespace kelvora::test
