// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <filesystem>

#include "command_line/cluster_writer.hpp"
#include "command_line/pictures.hpp"

namespace kelvora::tool {

/// Where results are written. An empty path disables the output.
struct OutputOptions {
    std::filesystem::path clusters = "-";
    ClusterFormat format = ClusterFormat::Csv;
    std::filesystem::path points;
    std::filesystem::path centroids;
    std::filesystem::path tracks;
    PictureOptions pictures;
    bool is_quiet = false;

    /// Whether an output needs the cluster of each event.
    bool needLabels() const { return !points.empty() || pictures.isWanted(); }
};

/// Adds an option for each field.
void declareOptions(CLI::App& command, OutputOptions& options);

}  // namespace kelvora::tool
