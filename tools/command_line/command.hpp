// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>

namespace kelvora::tool {

/// A command of the program.
class Command {
public:
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    /// Whether the user asked for this command.
    bool isChosen() const { return command->parsed(); }

    /// \returns the exit status of the program.
    virtual int run() const = 0;

protected:
    /// Adds the command to the program.
    Command(CLI::App& program, const std::string& name, const std::string& description)
        : command(program.add_subcommand(name, description)) {}

    CLI::App* command;
};

}  // namespace kelvora::tool
