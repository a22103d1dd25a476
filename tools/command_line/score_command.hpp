// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <filesystem>

#include "command_line/command.hpp"
#include "command_line/report_files.hpp"
#include "scoring/tracking_score.hpp"

namespace kelvora::tool {

/// `kelvora score`: compares clusters with the ground truth.
class ScoreCommand : public Command {
public:
    /// Adds the command and its options to the program.
    explicit ScoreCommand(CLI::App& program);

    /// \returns the exit status of the program.
    /// \throws recording::RecordingError  if a file cannot be read or written, or if truth and
    ///     clusters have no time in common.
    int run() const override;

private:
    void add(const scoring::Frame& frame, scoring::TrackingScore& tracking) const;

    std::filesystem::path truth;
    std::filesystem::path clusters;
    ReportOptions report_options;
    scoring::ScoreOptions options;
    bool with_tentative = false;
};

}  // namespace kelvora::tool
