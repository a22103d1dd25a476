// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "kelvora/recording/event_reader.hpp"
#include "sessions/parameter_error.hpp"
#include "sessions/session.hpp"
#include "sessions/settings.hpp"
#include "sessions/window_reader.hpp"

/// \file
/// The steps that all programs share that cluster a recording.

namespace kelvora::tool {

/// Opens a recording to cluster its windows.
///
/// \param wording  How messages name parameters.
/// \throws recording::RecordingError  if it cannot be opened, or if neither the recording nor the
///     options state the size of the sensor.
WindowReader openWindows(const std::filesystem::path& path, const recording::ReadOptions& options,
                         const Settings& settings, const Wording& wording);

/// A session for the windows of a reader.
///
/// \throws recording::RecordingError  if the sensor needs too much memory.
/// \throws std::runtime_error  if memory cannot be reserved.
Session makeSession(const WindowReader& reader, const Settings& settings);

/// The remarks of a session and of its recording, separated by "; ". Empty if there are none.
std::string remarksOf(const Session& session, const WindowReader& reader);

}  // namespace kelvora::tool
