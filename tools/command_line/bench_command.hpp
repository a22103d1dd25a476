// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "command_line/bench_report.hpp"
#include "command_line/recording_options.hpp"
#include "command_line/timed_method.hpp"
#include "command_line/window_options.hpp"

namespace kelvora::tool {

/// `kelvora bench`: says how fast the methods cluster a recording.
///
/// Each method goes over the recording on its own, after a pass that only reads it. So nothing of the
/// recording is kept but a window, the caches are a method's own, and so is the peak of memory.
class BenchCommand {
public:
    /// Adds the command and its options to the program.
    explicit BenchCommand(CLI::App& program);

    /// Whether the user asked for this command.
    bool isChosen() const { return command->parsed(); }

    /// \returns the exit status of the program.
    /// \throws recording::RecordingError  for a bad recording, once all that could be read is timed.
    int run() const;

private:
    void declareOptions();
    void checkOptions() const;
    BenchReport measure(std::exception_ptr& defect) const;
    PassFigures pass(const std::string& name, const ClusterWindow& cluster,
                     std::exception_ptr& defect) const;

    CLI::App* command;
    RecordingOptions recording;
    WindowOptions windows;
    std::vector<std::string> methods;
    TimedMethodOptions parameters;
    std::filesystem::path json;
};

}  // namespace kelvora::tool
