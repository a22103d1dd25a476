// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

namespace kelvora::reference {

/// Gives events one by one to a generator of the library or to its model.
template <class Generator, class Event>
void feedOneByOne(Generator& generator, const std::vector<Event>& events) {
    for (const Event& event : events) {
        generator.processEvent(&event);
    }
}

}  // namespace kelvora::reference
