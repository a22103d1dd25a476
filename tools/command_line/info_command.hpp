// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "command_line/command.hpp"
#include "command_line/recording_options.hpp"

namespace kelvora::tool {

/// `kelvora info`: summarises a recording.
class InfoCommand : public Command {
public:
    /// Adds the command and its options to the program.
    explicit InfoCommand(CLI::App& program);

    /// \returns the exit status of the program.
    /// \throws recording::RecordingError  for a bad recording, after printing a summary of the
    ///     readable part.
    int run() const override;

private:
    RecordingOptions recording;
    bool as_json = false;
};

}  // namespace kelvora::tool
