// SPDX-License-Identifier: MIT
#include "recording/recording_error.hpp"

namespace kelvora::recording {

RecordingError::RecordingError(const std::string& file, const std::string& problem,
                               const std::string& where, const std::string& remedy)
    : std::runtime_error(file + ": " + problem + (where.empty() ? "" : ", " + where) + ", " +
                         remedy) {}

}  // namespace kelvora::recording
