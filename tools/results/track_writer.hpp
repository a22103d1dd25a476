// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <opencv2/core/types.hpp>

#include "recording/output_file.hpp"
#include "sessions/clustering_method.hpp"

namespace kelvora::tool {

/// Writes one row per confirmed track (CSV): its number, the ends of its first and last windows,
/// the number of windows in which it had a cluster, the length of its path in pixels, and its mean
/// speed in pixels per second.
///
/// Rows are sorted by number: an ended track stays in memory until all tracks with lower numbers
/// have ended.
class TrackWriter {
public:
    /// \param path  A file, or "-" for standard output.
    /// \throws recording::RecordingError  if the file cannot be written. The other functions throw
    ///     the same.
    explicit TrackWriter(const std::filesystem::path& path,
                         const recording::WriteOptions& options = {});

    void add(const WindowClusters& found);

    /// Ends all tracks.
    void finish();

    /// Completes the file.
    void close() { file.close(); }

private:
    struct Summary {
        std::uint64_t first_time;
        std::uint64_t last_time;
        int windows;
        double path_length;
        cv::Point2f centre;
        bool is_confirmed;
    };

    static void addWindow(Summary& summary, const ClusterTracker::Track& track);
    void end(const std::map<int, Summary>& tracks);
    void writeEnded();

    recording::OutputFile file;
    std::map<int, Summary> going_on;
    std::map<int, Summary> ended;  ///< The confirmed ones.
};

}  // namespace kelvora::tool
