// SPDX-License-Identifier: MIT
#pragma once

#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// The row of the format table for packed records of 16 bytes.
Format recordsFormat();

}  // namespace kelvora::recording
