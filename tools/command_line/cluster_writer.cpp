// SPDX-License-Identifier: MIT
#include "command_line/cluster_writer.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace kelvora::tool {

namespace {

constexpr std::string_view kCsvHeader = "timestamp_us,x,y,width,height,start_time_us,duration_us\n";

/// Start of a cluster in absolute time, -1 if it is not known.
std::int64_t startTime(const ClusterGeometry& cluster, std::uint64_t time_origin) {
    return cluster.start_time < 0 ? -1
                                  : static_cast<std::int64_t>(time_origin) + cluster.start_time;
}

std::string toCsv(const ClusterGeometry& cluster, std::uint64_t time_origin) {
    return fmt::format("{},{},{},{},{},{},{}\n", cluster.timestamp, cluster.x, cluster.y,
                       cluster.width, cluster.height, startTime(cluster, time_origin),
                       cluster.duration);
}

std::string toJson(const ClusterGeometry& cluster, std::uint64_t time_origin) {
    const nlohmann::ordered_json row = {{"timestamp_us", cluster.timestamp},
                                        {"x", cluster.x},
                                        {"y", cluster.y},
                                        {"width", cluster.width},
                                        {"height", cluster.height},
                                        {"start_time_us", startTime(cluster, time_origin)},
                                        {"duration_us", cluster.duration}};
    return row.dump() + '\n';
}

}  // namespace

ClusterWriter::ClusterWriter(const std::filesystem::path& path, ClusterFormat format_)
    : file(path), format(format_) {
    if (format == ClusterFormat::Csv) {
        file.write(kCsvHeader);
    }
}

void ClusterWriter::write(const WindowClusters& found) {
    std::string rows;
    for (const ClusterGeometry& cluster : found.clusters) {
        rows += format == ClusterFormat::Csv ? toCsv(cluster, found.time_origin)
                                             : toJson(cluster, found.time_origin);
    }
    file.write(rows);
}

}  // namespace kelvora::tool
