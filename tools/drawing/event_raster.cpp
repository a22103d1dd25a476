// SPDX-License-Identifier: MIT
#include "drawing/event_raster.hpp"

#include <algorithm>
#include <cstdint>

#include "drawing/palette.hpp"

namespace kelvora::drawing {

namespace {

// Element i is the start of pixel i when `from` pixels are resized to `to` pixels. One more element
// marks the end.
std::vector<int> scaledEdges(int from, int to) {
    std::vector<int> edges(static_cast<std::size_t>(from) + 1);
    for (std::size_t i = 0; i < edges.size(); ++i) {
        edges[i] = static_cast<int>(static_cast<std::int64_t>(i) * to / from);
    }
    return edges;
}

int lengthBetween(const std::vector<int>& edges, std::size_t i, int shortest) {
    return std::max(shortest, edges[i + 1] - edges[i]);
}

unsigned char rasterValue(const EventSpan& events, std::size_t i) {
    if (events.labels == nullptr) {
        return events.first[i].polarity != 0 ? kOn : kOff;
    }
    const int label = events.labels[i];
    return label < 0 ? static_cast<unsigned char>(kNoise)
                     : static_cast<unsigned char>(kFirstCluster +
                                                  static_cast<std::size_t>(label) % kIdColourCount);
}

cv::Vec3b colourOf(unsigned char value) {
    switch (value) {
        case kNoEvent:
            return kBackgroundColour;
        case kOff:
            return kOffColour;
        case kOn:
            return kOnColour;
        case kNoise:
            return kNoiseColour;
        default:
            return idColour(value - kFirstCluster);
    }
}

}  // namespace

cv::Vec3b eventColour(const EventSpan& events, std::size_t i) {
    return colourOf(rasterValue(events, i));
}

cv::Mat rasterize(EventSpan events, cv::Size sensor, cv::Size raster) {
    const std::vector<int> columns = scaledEdges(sensor.width, raster.width);
    const std::vector<int> rows = scaledEdges(sensor.height, raster.height);
    cv::Mat result(raster, CV_8UC1, cv::Scalar::all(kNoEvent));
    for (std::size_t i = 0; i < events.count; ++i) {
        const Event2D& event = events.first[i];
        if (event.x < sensor.width && event.y < sensor.height) {
            result.at<unsigned char>(rows[event.y], columns[event.x]) = rasterValue(events, i);
        }
    }
    return result;
}

cv::Mat colourRaster(const cv::Mat& raster, cv::Size picture) {
    const std::vector<int> columns = scaledEdges(raster.cols, picture.width);
    const std::vector<int> rows = scaledEdges(raster.rows, picture.height);
    const int dot = columns.back() < raster.cols || rows.back() < raster.rows ? 2 : 1;
    const cv::Rect whole{{0, 0}, picture};
    cv::Mat result(picture, CV_8UC3, cv::Scalar(kBackgroundColour));
    for (std::size_t y = 0; y + 1 < rows.size(); ++y) {
        const auto* values = raster.ptr<unsigned char>(static_cast<int>(y));
        for (std::size_t x = 0; x + 1 < columns.size(); ++x) {
            if (values[x] != kNoEvent) {
                const cv::Rect area{columns[x], rows[y], lengthBetween(columns, x, dot),
                                    lengthBetween(rows, y, dot)};
                result(area & whole).setTo(cv::Scalar(colourOf(values[x])));
            }
        }
    }
    return result;
}

}  // namespace kelvora::drawing
