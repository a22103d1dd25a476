// SPDX-License-Identifier: MIT
#include "events/rejected_polarity.hpp"

#include <stdexcept>

namespace kelvora {

std::uint8_t rejectedPolarity(EventFilterType filter_type) {
    if (filter_type >= kFilterTypeToRejectedPolarity.size()) {
        // The text is part of the interface: it must not depend on the container of the table or on
        // the standard library.
        throw std::out_of_range("invalid unordered_map<K, T> key");
    }
    return kFilterTypeToRejectedPolarity[filter_type];
}

}  // namespace kelvora
