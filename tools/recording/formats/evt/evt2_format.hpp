// SPDX-License-Identifier: MIT
#pragma once

#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// The row of the format table for EVT 2.
Format evt2Format();

}  // namespace kelvora::recording
