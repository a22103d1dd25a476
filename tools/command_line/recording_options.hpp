// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <filesystem>

#include "kelvora/recording/event_reader.hpp"
#include "sessions/window_reader.hpp"

namespace kelvora::tool {

/// How to read a recording: its path, and properties that its content does not state.
struct RecordingOptions {
    std::filesystem::path path;
    recording::ReadOptions read;
};

/// Adds the recording argument and the options that describe it.
void declareOptions(CLI::App& command, RecordingOptions& options);

/// Reads more of a recording. A signal that arrives during a wait for it ends the recording.
///
/// \returns the result of `WindowReader::read`.
bool readUnlessInterrupted(WindowReader& reader);

}  // namespace kelvora::tool
