// SPDX-License-Identifier: MIT
#include "command_line/cluster_writer.hpp"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "command_line/cluster_rows.hpp"
#include "command_line/track_options.hpp"

namespace kelvora::tool {

namespace {

using Track = ClusterTracker::Track;

constexpr std::string_view kCsvHeader = "timestamp_us,x,y,width,height,start_time_us,duration_us";
constexpr std::string_view kCsvTrackHeader = ",track_id,vx,vy,state";

void appendCsv(std::string& text, const ClusterRow& row, const WindowClusters& found,
               bool with_tracks) {
    const ClusterGeometry& box = *row.box;
    const auto out = std::back_inserter(text);
    fmt::format_to(out, "{},{},{},{},{},{},{}", box.timestamp, box.x, box.y, box.width, box.height,
                   startTimeOf(box, found), box.duration);
    if (with_tracks) {
        const Track none{};
        const Track& track = row.track == nullptr ? none : *row.track;
        fmt::format_to(out, ",{},{:.1f},{:.1f},{}", track.id, track.vx, track.vy, stateOf(row));
    }
    text += '\n';
}

void appendJson(std::string& text, const ClusterRow& row, const WindowClusters& found,
                bool with_tracks) {
    const ClusterGeometry& box = *row.box;
    nlohmann::ordered_json object = {{"timestamp_us", box.timestamp},
                                     {"x", box.x},
                                     {"y", box.y},
                                     {"width", box.width},
                                     {"height", box.height},
                                     {"start_time_us", startTimeOf(box, found)},
                                     {"duration_us", box.duration}};
    if (with_tracks) {
        const Track none{};
        const Track& track = row.track == nullptr ? none : *row.track;
        object["track_id"] = track.id;
        object["vx"] = track.vx;
        object["vy"] = track.vy;
        object["state"] = stateOf(row);
    }
    text += object.dump() + '\n';
}

void appendMot(std::string& text, const ClusterRow& row, const WindowClusters& found) {
    if (row.track != nullptr && isFollowed(*row.track)) {
        const ClusterGeometry& box = *row.box;
        // MOTChallenge coordinates start at 1.
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
    for (const ClusterRow& row : rowsOf(found)) {
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
