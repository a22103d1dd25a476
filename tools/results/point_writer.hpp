// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "recording/output_file.hpp"
#include "recording/window_slicer.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// Writes every event that belongs to a cluster (CSV): the end of its window, the number of its
/// cluster, counted from 0 in the order of the window's rows, and the event itself.
class PointWriter {
public:
    /// \param path  A file, or "-" for standard output.
    /// \throws recording::RecordingError  if the file cannot be written. The other functions throw
    ///     the same.
    explicit PointWriter(const std::filesystem::path& path,
                         const recording::WriteOptions& options = {});

    void write(const recording::Window& window, const WindowClusters& found);

    /// Completes the file.
    void close() { file.close(); }

private:
    recording::OutputFile file;
};

}  // namespace kelvora::tool
