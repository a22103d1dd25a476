// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include <vector>

#include "command_line/file_check.hpp"
#include "results/result_files.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Adds an option for each output.
void declareOptions(CLI::App& command, OutputSettings& options);

/// \throws CLI::ValidationError  for an output that the settings do not provide, and names of
///     pictures that do not end in ".png".
void checkOutput(const OutputSettings& output, const Settings& settings);

/// The outputs with their options, except the frames.
std::vector<NamedFile> filesOf(const OutputSettings& output);

}  // namespace kelvora::tool
