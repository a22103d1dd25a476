// SPDX-License-Identifier: MIT
#include "command_line/track_writer.hpp"

#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <string>

namespace kelvora::tool {

TrackWriter::TrackWriter(const std::filesystem::path& path) : file(path) {
    file.write("track_id,first_time_us,last_time_us,windows,path_length_px,mean_speed_px_s\n");
}

void TrackWriter::add(const WindowClusters& found) {
    for (const ClusterTracker::Track& track : found.tracks) {
        if (track.cluster < 0) {
            continue;
        }
        const cv::Point2f centre = track.box.getCenter();
        const auto [place, is_new] =
            summaries.try_emplace(track.id, Summary{track.box.timestamp, 0, 0, 0.0, centre, false});
        Summary& summary = place->second;
        summary.last_time = track.box.timestamp;
        ++summary.windows;
        summary.path_length += std::hypot(centre.x - summary.centre.x, centre.y - summary.centre.y);
        summary.centre = centre;
        summary.is_confirmed = track.state == ClusterTracker::State::Confirmed;
    }
}

void TrackWriter::finish() {
    std::string rows;
    for (const auto& [id, summary] : summaries) {
        if (!summary.is_confirmed) {
            continue;
        }
        const double seconds = static_cast<double>(summary.last_time - summary.first_time) * 1e-6;
        fmt::format_to(std::back_inserter(rows), "{},{},{},{},{:.1f},{:.1f}\n", id,
                       summary.first_time, summary.last_time, summary.windows, summary.path_length,
                       seconds > 0 ? summary.path_length / seconds : 0.0);
    }
    file.write(rows);
}

}  // namespace kelvora::tool
