// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "sessions/session.hpp"
#include "sessions/window_reader.hpp"

/// \file
/// The steps that all programs share that cluster a recording.

namespace kelvora::tool {

/// The remarks of a session and of its recording, separated by "; ". Empty if there are none.
std::string remarksOf(const Session& session, const WindowReader& reader);

}  // namespace kelvora::tool
