// SPDX-License-Identifier: MIT
#include "command_line/cluster_writer.hpp"

#include <fmt/format.h>

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace kelvora::tool {

namespace {

constexpr std::string_view kCsvHeader = "timestamp_us,x,y,width,height,start_time_us,duration_us\n";

std::string toCsv(const ClusterGeometry& cluster) {
    return fmt::format("{},{},{},{},{},{},{}\n", cluster.timestamp, cluster.x, cluster.y,
                       cluster.width, cluster.height, cluster.start_time, cluster.duration);
}

std::string toJson(const ClusterGeometry& cluster) {
    const nlohmann::ordered_json row = {{"timestamp_us", cluster.timestamp},
                                        {"x", cluster.x},
                                        {"y", cluster.y},
                                        {"width", cluster.width},
                                        {"height", cluster.height},
                                        {"start_time_us", cluster.start_time},
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

void ClusterWriter::write(const std::vector<ClusterGeometry>& clusters) {
    std::string rows;
    for (const ClusterGeometry& cluster : clusters) {
        rows += format == ClusterFormat::Csv ? toCsv(cluster) : toJson(cluster);
    }
    file.write(rows);
}

}  // namespace kelvora::tool
