// SPDX-License-Identifier: MIT
#include "results/point_writer.hpp"

#include <fmt/format.h>

#include <iterator>
#include <string>

namespace kelvora::tool {

PointWriter::PointWriter(const std::filesystem::path& path, const recording::WriteOptions& options)
    : file(path, options) {
    file.writeHeader("timestamp_us,cluster,event_time_us,x,y,polarity\n");
}

void PointWriter::write(const recording::Window& window, const WindowClusters& found) {
    std::string rows;
    for (std::size_t i = 0; i < found.labels.size(); ++i) {
        if (found.labels[i] == kNoCluster) {
            continue;
        }
        const Event2D& event = window.first[i];
        fmt::format_to(std::back_inserter(rows), "{},{},{},{},{},{}\n", window.end_time,
                       found.labels[i], event.timestamp, event.x, event.y, event.polarity);
    }
    file.write(rows);
}

}  // namespace kelvora::tool
