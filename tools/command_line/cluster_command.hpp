// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "command_line/command.hpp"
#include "command_line/recording_options.hpp"
#include "results/result_files.hpp"
#include "sessions/settings_builder.hpp"

namespace kelvora::tool {

/// `kelvora cluster`: finds the clusters of a recording, window by window.
class ClusterCommand : public Command {
public:
    /// Adds the command and its options to the program.
    explicit ClusterCommand(CLI::App& program);

    /// \returns the exit status of the program.
    /// \throws std::runtime_error  for bad input or output, after all valid results have been
    ///     written.
    int run() const override;

private:
    RecordingOptions recording;
    SettingsBuilder builder;
    OutputSettings output;
    bool is_quiet = false;
};

}  // namespace kelvora::tool
