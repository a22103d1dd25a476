// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kelvora::recording {

/// Quotes a field of a file for a message. The field may contain anything; the result is short and
/// on one line.
inline std::string inQuotes(std::string_view field) {
    constexpr std::size_t kMaxShown = 24;
    std::string shown = "'";
    for (const char character : field.substr(0, kMaxShown)) {
        shown += character >= ' ' && character <= '~' ? character : '?';
    }
    return shown + (field.size() > kMaxShown ? "...'" : "'");
}

}  // namespace kelvora::recording
