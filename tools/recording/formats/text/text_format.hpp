// SPDX-License-Identifier: MIT
#pragma once

#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// The row of the format table for text with one event per line.
Format textFormat();

}  // namespace kelvora::recording
