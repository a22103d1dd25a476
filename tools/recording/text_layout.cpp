// SPDX-License-Identifier: MIT
#include "kelvora/recording/text_layout.hpp"

#include <algorithm>

namespace kelvora::recording {
namespace {

std::optional<TextColumn> columnFromLetter(char letter) {
    switch (letter) {
        case 't':
            return TextColumn::Time;
        case 'x':
            return TextColumn::X;
        case 'y':
            return TextColumn::Y;
        case 'p':
            return TextColumn::Polarity;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<TextColumns> textColumnsFromString(std::string_view text) {
    TextColumns columns{};
    std::size_t count = 0;
    for (const char letter : text) {
        if (letter == ',' || letter == ' ') {
            continue;
        }
        const auto column = columnFromLetter(letter);
        auto* const known_end = columns.begin() + count;
        if (!column || count == columns.size() ||
            std::find(columns.begin(), known_end, *column) != known_end) {
            return std::nullopt;
        }
        columns[count] = *column;
        ++count;
    }
    return count == columns.size() ? std::optional(columns) : std::nullopt;
}

std::optional<TimeUnit> timeUnitFromString(std::string_view text) {
    if (text == "s") {
        return TimeUnit::Seconds;
    }
    if (text == "ms") {
        return TimeUnit::Milliseconds;
    }
    if (text == "us") {
        return TimeUnit::Microseconds;
    }
    if (text == "ns") {
        return TimeUnit::Nanoseconds;
    }
    return std::nullopt;
}

}  // namespace kelvora::recording
