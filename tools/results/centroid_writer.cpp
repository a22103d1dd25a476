// SPDX-License-Identifier: MIT
#include "results/centroid_writer.hpp"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>
#include <iterator>
#include <string>

namespace kelvora::tool {

namespace {

/// Absolute time; -1 if unknown.
std::int64_t centroidTime(const ClusterCentroid& centroid, std::uint64_t time_origin) {
    return centroid.time_us
               ? static_cast<std::int64_t>(time_origin) + std::llround(*centroid.time_us)
               : -1;
}

}  // namespace

CentroidWriter::CentroidWriter(const std::filesystem::path& path,
                               const recording::WriteOptions& options)
    : file(path, options) {
    file.writeHeader("timestamp_us,cluster,x,y,time_us,size\n");
}

void CentroidWriter::write(std::uint64_t end_time, const WindowClusters& found) {
    std::string rows;
    for (std::size_t i = 0; i < found.centroids.size(); ++i) {
        const ClusterCentroid& centroid = found.centroids[i];
        fmt::format_to(std::back_inserter(rows), "{},{},{:.3f},{:.3f},{},{}\n", end_time, i,
                       centroid.x, centroid.y, centroidTime(centroid, found.time_origin),
                       centroid.size);
    }
    file.write(rows);
}

}  // namespace kelvora::tool
