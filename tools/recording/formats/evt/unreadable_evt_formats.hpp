// SPDX-License-Identifier: MIT
#pragma once

#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// The row of the format table for EVT recordings of a version that is not read.
Format otherEvtFormat();

/// The row of the format table for EVT recordings whose header names no version.
Format unversionedEvtFormat();

}  // namespace kelvora::recording
