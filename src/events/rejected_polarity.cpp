// SPDX-License-Identifier: MIT
#include "events/rejected_polarity.hpp"

#include <stdexcept>

namespace kelvora {

std::uint8_t rejectedPolarity(EventFilterType filter_type) {
    if (filter_type >= kFilterTypeToRejectedPolarity.size()) {
        // Callers rely on this text, whatever container holds the table and whoever wrote the
        // standard library.
        throw std::out_of_range("invalid unordered_map<K, T> key");
    }
    return kFilterTypeToRejectedPolarity[filter_type];
}

}  // namespace kelvora
