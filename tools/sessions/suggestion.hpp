// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::tool {

/// Levenshtein distance: the smallest number of letters to insert, delete or replace that turns one
/// word into the other. O(|a| |b|) time.
std::size_t editDistance(std::string_view a, std::string_view b);

/// The candidate that a mistyped word most likely means, or nothing if none is similar: at most a
/// third of the letters differ.
std::optional<std::string> closestWord(std::string_view word,
                                       const std::vector<std::string>& candidates);

/// "; did you mean X?", or an empty string if no candidate is similar.
std::string suggestionFor(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace kelvora::tool
