// SPDX-License-Identifier: MIT
#include "command_line/pictures.hpp"

#include <fmt/format.h>

#include "drawing/caption.hpp"
#include "drawing/png_file.hpp"

namespace kelvora::tool {

Pictures::Pictures(const PictureOptions& options_, recording::SensorSize sensor)
    : options(options_) {
    const cv::Size size(sensor.width, sensor.height);
    if (!options.frames_dir.empty()) {
        std::filesystem::create_directories(options.frames_dir);
        frames.emplace(size);
    }
    if (!options.overview.empty()) {
        overview.emplace(size);
    }
}

void Pictures::add(const recording::Window& window, const std::vector<ClusterGeometry>& clusters) {
    const std::uint64_t origin = first_start.value_or(window.start_time);
    first_start = origin;
    const drawing::EventSpan events(window.first, window.size());
    const std::string caption = drawing::windowCaption(window.start_time - origin,
                                                       window.end_time - origin, clusters.size());
    if (frames) {
        const std::string name = fmt::format("frame_{:06}.png", ++frame_number);
        drawing::writePng(options.frames_dir / name, frames->render(events, clusters, caption));
    }
    if (overview) {
        overview->add(events, clusters, caption);
    }
}

void Pictures::finish() const {
    if (!overview) {
        return;
    }
    const cv::Mat sheet = overview->compose();
    if (!sheet.empty()) {
        drawing::writePng(options.overview, sheet);
    }
}

}  // namespace kelvora::tool
