// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// Rows of the format table for well-known files that are recognised, so that the error names them,
/// but not read.
std::vector<Format> unreadableFormats();

}  // namespace kelvora::recording
