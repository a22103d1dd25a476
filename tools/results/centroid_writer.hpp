// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "recording/output_file.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// Writes the centroid of every cluster (CSV): the end of its window, the number of the cluster,
/// counted from 0 in the order of the window's rows, the centroid in pixels and microseconds (-1 in
/// two dimensions), and the number of events.
class CentroidWriter {
public:
    /// \param path  A file, or "-" for standard output.
    /// \throws recording::RecordingError  if the file cannot be written. The other functions throw
    ///     the same.
    explicit CentroidWriter(const std::filesystem::path& path,
                            const recording::WriteOptions& options = {});

    /// \param end_time  End of the window, microseconds.
    void write(std::uint64_t end_time, const WindowClusters& found);

    /// Completes the file.
    void close() { file.close(); }

private:
    recording::OutputFile file;
};

}  // namespace kelvora::tool
