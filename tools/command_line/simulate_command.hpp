// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <filesystem>
#include <optional>

#include "command_line/command.hpp"
#include "kelvora/recording/event_writer.hpp"
#include "simulation/scene_options.hpp"

namespace kelvora::tool {

/// `kelvora simulate`: makes a recording of a scene with known objects.
class SimulateCommand : public Command {
public:
    /// Adds the command and its options to the program.
    explicit SimulateCommand(CLI::App& program);

    /// \returns the exit status of the program.
    /// \throws std::runtime_error  if a file cannot be written.
    int run() const override;

private:
    void declareOutput();
    void declareScene();
    void checkOptions() const;

    std::filesystem::path output;
    std::filesystem::path truth;
    std::optional<std::string> format;
    recording::WriteOptions write;
    simulation::SceneOptions scene;
};

}  // namespace kelvora::tool
