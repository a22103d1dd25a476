// SPDX-License-Identifier: MIT
#include "kelvora/recording/recording_error.hpp"

#include <cstddef>

namespace kelvora::recording {

RecordingError::RecordingError(const std::string& file, const std::string& problem,
                               const std::string& where, const std::string& remedy)
    : std::runtime_error(file + ": " + problem + (where.empty() ? "" : ", " + where) + ", " +
                         remedy),
      parts(std::make_shared<const Parts>(Parts{file, problem, where, remedy})) {}

std::string inQuotes(std::string_view field) {
    constexpr std::size_t kMaxShown = 24;
    std::string shown = "'";
    for (const char character : field.substr(0, kMaxShown)) {
        shown += character >= ' ' && character <= '~' ? character : '?';
    }
    return shown + (field.size() > kMaxShown ? "...'" : "'");
}

}  // namespace kelvora::recording
