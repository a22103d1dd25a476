// SPDX-License-Identifier: MIT
#include "command_line/cluster_writer.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "command_line/track_options.hpp"

namespace kelvora::tool {

namespace {

using Track = ClusterTracker::Track;

constexpr std::string_view kCsvHeader = "timestamp_us,x,y,width,height,start_time_us,duration_us";
constexpr std::string_view kCsvTrackHeader = ",track_id,vx,vy,state";

/// A cluster, or the predicted box of a hidden object.
struct Row {
    const ClusterGeometry* box;
    const Track* track;  ///< Null for none.
};

/// Start of a cluster in absolute time, -1 if it is not known.
std::int64_t startTime(const ClusterGeometry& cluster, std::uint64_t time_origin) {
    return cluster.start_time < 0 ? -1
                                  : static_cast<std::int64_t>(time_origin) + cluster.start_time;
}

std::vector<Row> rowsOf(const WindowClusters& found) {
    std::vector<Row> rows;
    for (const ClusterGeometry& cluster : found.clusters) {
        rows.push_back({&cluster, nullptr});
    }
    for (const Track& track : found.tracks) {
        if (track.cluster >= 0) {
            rows[static_cast<std::size_t>(track.cluster)].track = &track;
        } else if (isFollowed(track)) {
            rows.push_back({&track.box, &track});
        }
    }
    return rows;
}

const char* stateOf(const Track* track) {
    if (track == nullptr) {
        return "none";
    }
    if (track->state == ClusterTracker::State::Tentative) {
        return "tentative";
    }
    return track->is_hidden ? "hidden" : "confirmed";
}

void appendCsv(std::string& text, const Row& row, const WindowClusters& found, bool with_tracks) {
    const ClusterGeometry& box = *row.box;
    const auto out = std::back_inserter(text);
    fmt::format_to(out, "{},{},{},{},{},{},{}", box.timestamp, box.x, box.y, box.width, box.height,
                   startTime(box, found.time_origin), box.duration);
    if (with_tracks) {
        const Track none{};
        const Track& track = row.track == nullptr ? none : *row.track;
        fmt::format_to(out, ",{},{:.1f},{:.1f},{}", track.id, track.vx, track.vy,
                       stateOf(row.track));
    }
    text += '\n';
}

void appendJson(std::string& text, const Row& row, const WindowClusters& found, bool with_tracks) {
    const ClusterGeometry& box = *row.box;
    nlohmann::ordered_json object = {{"timestamp_us", box.timestamp},
                                     {"x", box.x},
                                     {"y", box.y},
                                     {"width", box.width},
                                     {"height", box.height},
                                     {"start_time_us", startTime(box, found.time_origin)},
                                     {"duration_us", box.duration}};
    if (with_tracks) {
        const Track none{};
        const Track& track = row.track == nullptr ? none : *row.track;
        object["track_id"] = track.id;
        object["vx"] = track.vx;
        object["vy"] = track.vy;
        object["state"] = stateOf(row.track);
    }
    text += object.dump() + '\n';
}

void appendMot(std::string& text, const Row& row, const WindowClusters& found) {
    if (row.track != nullptr && isFollowed(*row.track)) {
        const ClusterGeometry& box = *row.box;
        // The challenge counts pixels from 1.
        fmt::format_to(std::back_inserter(text), "{},{},{:.2f},{:.2f},{:.2f},{:.2f},1,-1,-1,-1\n",
                       found.number, row.track->id, box.x + 1, box.y + 1, box.width, box.height);
    }
}

}  // namespace

ClusterWriter::ClusterWriter(const std::filesystem::path& path, ClusterFormat format_,
                             bool with_tracks_)
    : file(path), format(format_), with_tracks(with_tracks_) {
    if (format == ClusterFormat::Csv) {
        file.write(fmt::format("{}{}\n", kCsvHeader, with_tracks ? kCsvTrackHeader : ""));
    }
}

void ClusterWriter::write(const WindowClusters& found) {
    std::string text;
    for (const Row& row : rowsOf(found)) {
        switch (format) {
            case ClusterFormat::Csv:
                appendCsv(text, row, found, with_tracks);
                break;
            case ClusterFormat::JsonLines:
                appendJson(text, row, found, with_tracks);
                break;
            case ClusterFormat::Mot:
                appendMot(text, row, found);
                break;
        }
    }
    file.write(text);
}

}  // namespace kelvora::tool
