// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>

#include "kelvora/recording/event_writer.hpp"

namespace kelvora::tool {

/// Adds the option that refuses existing outputs. Waits for the outputs end at SIGTERM and SIGHUP.
CLI::Option* declareOptions(CLI::App& command, recording::WriteOptions& options);

/// Names of the outputs that remained incomplete, separated by commas.
const std::string& partialOutputs();

}  // namespace kelvora::tool
