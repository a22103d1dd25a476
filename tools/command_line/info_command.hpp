// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "command_line/recording_options.hpp"

namespace kelvora::tool {

/// `kelvora info`: summarises a recording.
class InfoCommand {
public:
    /// Adds the command and its options to the program.
    explicit InfoCommand(CLI::App& program);

    /// Whether the user asked for this command.
    bool isChosen() const { return command->parsed(); }

    /// \returns the exit status of the program.
    /// \throws recording::RecordingError  for a bad recording, after printing a summary of the
    ///     readable part.
    int run() const;

private:
    CLI::App* command;
    RecordingOptions recording;
    bool as_json = false;
};

}  // namespace kelvora::tool
