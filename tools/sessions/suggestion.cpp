// SPDX-License-Identifier: MIT
#include "sessions/suggestion.hpp"

#include <algorithm>
#include <numeric>

namespace kelvora::tool {

std::size_t editDistance(std::string_view a, std::string_view b) {
    // Distances from the letters of `a` read so far to every beginning of `b`.
    std::vector<std::size_t> distances(b.size() + 1);
    std::iota(distances.begin(), distances.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = distances[0];
        distances[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = distances[j + 1];
            distances[j + 1] = std::min({replaced, diagonal + 1, distances[j] + 1});
        }
    }
    return distances.back();
}

std::optional<std::string> closestWord(std::string_view word,
                                       const std::vector<std::string>& candidates) {
    const auto closest = std::min_element(candidates.begin(), candidates.end(),
                                          [word](const auto& a, const auto& b) {
                                              return editDistance(word, a) < editDistance(word, b);
                                          });
    if (closest == candidates.end() ||
        editDistance(word, *closest) * 3 > std::max(word.size(), closest->size())) {
        return std::nullopt;
    }
    return *closest;
}

std::string suggestionFor(std::string_view word, const std::vector<std::string>& candidates) {
    const auto closest = closestWord(word, candidates);
    return closest ? "; did you mean " + *closest + "?" : "";
}

}  // namespace kelvora::tool
