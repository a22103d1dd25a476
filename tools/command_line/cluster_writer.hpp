// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "command_line/clustering_method.hpp"
#include "recording/output_file.hpp"

namespace kelvora::tool {

enum class ClusterFormat { Csv, JsonLines };

/// Writes one row per cluster: the end of its window, its box in pixels, and its extent in time
/// where it is known (start -1 and duration 0 where not), all times in microseconds.
class ClusterWriter {
public:
    /// \param path  A file, or "-" for standard output.
    /// \throws recording::RecordingError  if the file cannot be written; likewise `write`.
    ClusterWriter(const std::filesystem::path& path, ClusterFormat format_);

    /// Writes the clusters of one window; afterwards, the system has them all.
    void write(const WindowClusters& found);

private:
    recording::OutputFile file;
    ClusterFormat format;
};

}  // namespace kelvora::tool
