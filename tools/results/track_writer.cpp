// SPDX-License-Identifier: MIT
#include "results/track_writer.hpp"

#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <string>
#include <utility>

namespace kelvora::tool {

TrackWriter::TrackWriter(const std::filesystem::path& path, const recording::WriteOptions& options)
    : file(path, options) {
    file.writeHeader(
        "track_id,first_time_us,last_time_us,windows,path_length_px,mean_speed_px_s\n");
}

void TrackWriter::add(const WindowClusters& found) {
    std::map<int, Summary> still_there;
    for (const ClusterTracker::Track& track : found.tracks) {
        auto known = going_on.extract(track.id);
        if (!known.empty()) {
            still_there.insert(std::move(known));
        } else if (track.cluster >= 0) {
            still_there[track.id] = {track.box.timestamp, 0, 0, 0.0, track.box.getCenter(), false};
        }
        if (track.cluster >= 0) {
            addWindow(still_there[track.id], track);
        }
    }
    end(going_on);
    going_on = std::move(still_there);
    writeEnded();
}

void TrackWriter::finish() {
    end(going_on);
    going_on.clear();
    writeEnded();
}

void TrackWriter::addWindow(Summary& summary, const ClusterTracker::Track& track) {
    const cv::Point2f centre = track.box.getCenter();
    summary.last_time = track.box.timestamp;
    ++summary.windows;
    summary.path_length += std::hypot(centre.x - summary.centre.x, centre.y - summary.centre.y);
    summary.centre = centre;
    summary.is_confirmed = track.state == ClusterTracker::State::Confirmed;
}

/// Tentative tracks that end are not reported.
void TrackWriter::end(const std::map<int, Summary>& tracks) {
    for (const auto& [id, summary] : tracks) {
        if (summary.is_confirmed) {
            ended.emplace(id, summary);
        }
    }
}

void TrackWriter::writeEnded() {
    std::string rows;
    while (!ended.empty() && (going_on.empty() || ended.begin()->first < going_on.begin()->first)) {
        const auto& [id, summary] = *ended.begin();
        const double seconds = static_cast<double>(summary.last_time - summary.first_time) * 1e-6;
        fmt::format_to(std::back_inserter(rows), "{},{},{},{},{:.1f},{:.1f}\n", id,
                       summary.first_time, summary.last_time, summary.windows, summary.path_length,
                       seconds > 0 ? summary.path_length / seconds : 0.0);
        ended.erase(ended.begin());
    }
    file.write(rows);
}

}  // namespace kelvora::tool
