// SPDX-License-Identifier: MIT
#pragma once

#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// The row of the format table for EVT 3.
Format evt3Format();

}  // namespace kelvora::recording
