// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "command_line/bench_report.hpp"
#include "command_line/command.hpp"
#include "command_line/recording_options.hpp"
#include "command_line/report_files.hpp"
#include "sessions/session.hpp"
#include "sessions/settings_builder.hpp"

namespace kelvora::tool {

/// `kelvora bench`: measures how fast each method clusters a recording.
///
/// A first pass only reads the recording, then each method gets a separate pass. Only one window is
/// in memory at a time, and methods do not share caches or the peak memory.
class BenchCommand : public Command {
public:
    /// Adds the command and its options to the program.
    explicit BenchCommand(CLI::App& program);

    /// \returns the exit status of the program.
    /// \throws recording::RecordingError  for a bad recording, after everything readable has been
    ///     timed.
    int run() const override;

private:
    void declareOptions();
    void checkOptions() const;
    BenchReport measure(std::exception_ptr& defect) const;
    PassFigures pass(const std::string& name, const Settings& settings, bool clusters,
                     std::exception_ptr& defect) const;
    Settings settingsOf(const std::string& name) const;

    RecordingOptions recording;
    std::vector<std::string> methods;
    SettingsBuilder builder;
    ReportOptions report_options;
};

}  // namespace kelvora::tool
