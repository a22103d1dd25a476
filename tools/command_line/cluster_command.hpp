// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "command_line/clustering_options.hpp"
#include "command_line/output_options.hpp"

namespace kelvora::tool {

/// `kelvora cluster`: finds the clusters of a recording, window by window.
class ClusterCommand {
public:
    /// Adds the command and its options to the program.
    explicit ClusterCommand(CLI::App& program);

    /// Whether the user asked for this command.
    bool isChosen() const { return command->parsed(); }

    /// \returns the exit status of the program.
    /// \throws std::runtime_error  for bad input or output, after all valid results have been
    ///     written.
    int run() const;

private:
    void checkOutputOptions() const;

    CLI::App* command;
    ClusteringOptions options;
    OutputOptions output;
};

}  // namespace kelvora::tool
