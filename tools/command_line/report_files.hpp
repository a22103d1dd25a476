// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <vector>

#include "command_line/file_check.hpp"
#include "recording/output_file.hpp"

namespace kelvora::tool {

/// Where a report is written besides the table on standard output.
struct ReportOptions {
    std::filesystem::path json;  ///< "-" is standard output, without the table then.
    recording::WriteOptions write;
};

/// Adds the options.
void declareOptions(CLI::App& command, ReportOptions& options);

/// The outputs with their options.
std::vector<NamedFile> filesOf(const ReportOptions& options);

/// Writes a report: a table for people, and JSON for programs if requested.
class ReportFiles {
public:
    /// \throws recording::RecordingError  if a file cannot be written. The other functions throw the
    ///     same.
    explicit ReportFiles(const ReportOptions& options);

    void write(const std::string& table, const nlohmann::ordered_json& json);

    /// Completes the file.
    void close();

private:
    bool has_table;
    std::optional<recording::OutputFile> json_file;
};

}  // namespace kelvora::tool
