// SPDX-License-Identifier: MIT
#include "results/cluster_writer.hpp"

#include <fmt/format.h>

#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "sessions/cluster_rows.hpp"

namespace kelvora::tool {

namespace {

constexpr std::string_view kCsvHeader =
    "timestamp_us,x,y,width,height,start_time_us,duration_us,events";
constexpr std::string_view kCsvTrackHeader = ",track_id,vx,vy,state";

void appendCsv(std::string& text, const ClusterRow& row, bool with_tracks) {
    const auto out = std::back_inserter(text);
    fmt::format_to(out, "{},{},{},{},{},{},{},{}", row.timestamp, row.x, row.y, row.width,
                   row.height, row.start_time, row.duration, row.events);
    if (with_tracks) {
        fmt::format_to(out, ",{},{:.1f},{:.1f},{}", row.track.id, row.track.vx, row.track.vy,
                       row.state);
    }
    text += '\n';
}

void appendJson(std::string& text, const ClusterRow& row, bool with_tracks) {
    nlohmann::ordered_json object = {{"timestamp_us", row.timestamp},
                                     {"x", row.x},
                                     {"y", row.y},
                                     {"width", row.width},
                                     {"height", row.height},
                                     {"start_time_us", row.start_time},
                                     {"duration_us", row.duration},
                                     {"events", row.events}};
    if (with_tracks) {
        object["track_id"] = row.track.id;
        object["vx"] = row.track.vx;
        object["vy"] = row.track.vy;
        object["state"] = row.state;
    }
    text += object.dump() + '\n';
}

void appendMot(std::string& text, const ClusterRow& row, std::uint64_t frame) {
    if (isFollowed(row.track)) {
        // MOTChallenge coordinates start at 1.
        fmt::format_to(std::back_inserter(text), "{},{},{:.2f},{:.2f},{:.2f},{:.2f},1,-1,-1,-1\n",
                       frame, row.track.id, row.x + 1, row.y + 1, row.width, row.height);
    }
}

}  // namespace

ClusterWriter::ClusterWriter(const std::filesystem::path& path, ClusterFormat format_,
                             bool with_tracks_, const recording::WriteOptions& options)
    : file(path, options), format(format_), with_tracks(with_tracks_) {
    if (format == ClusterFormat::Csv) {
        file.writeHeader(fmt::format("{}{}\n", kCsvHeader, with_tracks ? kCsvTrackHeader : ""));
    }
}

void ClusterWriter::write(const WindowClusters& found) {
    std::string text;
    for (const ClusterRow& row : rowsOf(found)) {
        switch (format) {
            case ClusterFormat::Csv:
                appendCsv(text, row, with_tracks);
                break;
            case ClusterFormat::JsonLines:
                appendJson(text, row, with_tracks);
                break;
            case ClusterFormat::Mot:
                appendMot(text, row, found.number);
                break;
        }
    }
    file.write(text);
}

}  // namespace kelvora::tool
