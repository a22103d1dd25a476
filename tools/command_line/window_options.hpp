// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <optional>

#include "command_line/polarity.hpp"
#include "command_line/quantities.hpp"

namespace kelvora::tool {

/// Which events of a recording are clustered, and how they are grouped into windows.
struct WindowOptions {
    Duration window{10'000};
    Duration from;
    std::optional<Duration> to;  ///< If absent, the end of the recording.
    Polarity polarity = Polarity::All;
};

/// Adds the options for windows: their length, the first and the last.
void declareWindows(CLI::App& command, WindowOptions& options);

/// Adds the option `--polarity`.
void declarePolarity(CLI::App& command, WindowOptions& options);

/// \throws CLI::ValidationError  for contradictory options.
void checkOptions(const WindowOptions& options);

}  // namespace kelvora::tool
