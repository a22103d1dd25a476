// SPDX-License-Identifier: MIT
#include "drawing/frame_renderer.hpp"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <stdexcept>

#include "drawing/caption.hpp"
#include "drawing/palette.hpp"

namespace kelvora::drawing {

namespace {

constexpr int kComfortableSide = 480;
constexpr int kLongestSide = 4096;
constexpr int kThumbnailSide = 320;  // Smaller pictures get thinner lines.
constexpr int kSmallestBoxSide = 3;
constexpr int kCrossSide = 7;

cv::Size comfortableSize(cv::Size sensor) {
    const int shorter = std::max(1, std::min(sensor.width, sensor.height));
    const int longer = std::max(1, std::max(sensor.width, sensor.height));
    if (longer > kLongestSide) {
        const double scale = static_cast<double>(kLongestSide) / longer;
        return {std::max(1, static_cast<int>(sensor.width * scale)),
                std::max(1, static_cast<int>(sensor.height * scale))};
    }
    // Rounded to the nearest factor, as 240 rows look as good as 260 do.
    const int wanted = (kComfortableSide + shorter / 2) / shorter;
    return sensor * std::max(1, std::min(wanted, kLongestSide / longer));
}

bool isDrawable(const ClusterGeometry& cluster) {
    return std::isfinite(cluster.x) && std::isfinite(cluster.y) && std::isfinite(cluster.width) &&
           std::isfinite(cluster.height) && cluster.width >= 0 && cluster.height >= 0;
}

struct Interval {
    int begin;
    int end;
};

// The pixels of a picture that a length of the sensor touches. Widened to what the eye can see, and
// kept within reach of the picture, since a float holds more than an int.
Interval scaledInterval(double start, double length, double scale, int picture_length) {
    const double reach = 2.0 * picture_length + 2 * kSmallestBoxSide;
    double begin = std::clamp(std::floor(start * scale), -reach, reach);
    double end = std::clamp(std::ceil((start + length) * scale), -reach, reach);
    const double missing = kSmallestBoxSide - (end - begin);
    if (missing > 0) {
        begin -= std::floor(missing / 2);
        end += std::ceil(missing / 2);
    }
    return {static_cast<int>(begin), static_cast<int>(end)};
}

cv::Rect boxInPicture(const ClusterGeometry& cluster, cv::Size sensor, cv::Size picture) {
    const Interval columns = scaledInterval(
        cluster.x, cluster.width, static_cast<double>(picture.width) / sensor.width, picture.width);
    const Interval rows =
        scaledInterval(cluster.y, cluster.height,
                       static_cast<double>(picture.height) / sensor.height, picture.height);
    return {columns.begin, rows.begin, columns.end - columns.begin, rows.end - rows.begin};
}

cv::Rect grown(const cv::Rect& rect, int by) {
    return {rect.x - by, rect.y - by, rect.width + 2 * by, rect.height + 2 * by};
}

void drawRing(cv::Mat& frame, const cv::Rect& ring, const cv::Vec3b& colour) {
    if (!ring.empty()) {
        cv::rectangle(frame, ring, cv::Scalar(colour));
    }
}

std::vector<cv::Rect> outlines(const std::vector<ClusterGeometry>& clusters, cv::Size sensor,
                               cv::Size picture, int thickness) {
    const cv::Rect whole{{0, 0}, picture};
    std::vector<cv::Rect> result;
    for (const ClusterGeometry& cluster : clusters) {
        if (!isDrawable(cluster)) {
            continue;
        }
        const cv::Rect box = boxInPicture(cluster, sensor, picture);
        if (!(box & whole).empty()) {
            result.push_back(grown(box, thickness) & whole);
        }
    }
    return result;
}

// A dark line around the bright ones sets an outline off from the events around it. All dark lines
// come first, so that none cuts through the outline of a neighbour.
void drawOutlines(cv::Mat& frame, const std::vector<cv::Rect>& outlines, int thickness) {
    for (const cv::Rect& outline : outlines) {
        drawRing(frame, grown(outline, 1), kBackgroundColour);
    }
    for (const cv::Rect& outline : outlines) {
        for (int i = 0; i < thickness; ++i) {
            drawRing(frame, grown(outline, -i), kBoxColour);
        }
    }
}

// Each with a dark rim, as outlines have.
void drawCrosses(cv::Mat& frame, const std::vector<cv::Point2f>& centroids, cv::Size sensor,
                 int thickness) {
    for (const cv::Point2f& centroid : centroids) {
        // The centre of an event's pixel, not its corner.
        const double column = (centroid.x + 0.5) * frame.cols / sensor.width;
        const double row = (centroid.y + 0.5) * frame.rows / sensor.height;
        if (!(0 <= column && column < frame.cols && 0 <= row && row < frame.rows)) {
            continue;
        }
        const cv::Point place(static_cast<int>(column), static_cast<int>(row));
        cv::drawMarker(frame, place, cv::Scalar(kBackgroundColour), cv::MARKER_CROSS,
                       kCrossSide * thickness + 2, thickness + 2);
        cv::drawMarker(frame, place, cv::Scalar(kBoxColour), cv::MARKER_CROSS,
                       kCrossSide * thickness, thickness);
    }
}

}  // namespace

FrameRenderer::FrameRenderer(cv::Size sensor_) : FrameRenderer{sensor_, comfortableSize(sensor_)} {}

FrameRenderer::FrameRenderer(cv::Size sensor_, cv::Size picture_)
    : sensor{sensor_}, picture{picture_} {
    if (std::min({sensor.width, sensor.height, picture.width, picture.height}) < 1) {
        throw std::invalid_argument("sensor and picture must have at least one pixel");
    }
}

cv::Mat FrameRenderer::render(EventSpan events, const Overlay& overlay,
                              const std::string& caption) const {
    const cv::Size raster_size{std::min(sensor.width, picture.width),
                               std::min(sensor.height, picture.height)};
    cv::Mat frame = render(rasterize(events, sensor, raster_size), overlay);
    if (caption.empty()) {
        return frame;
    }
    cv::Mat captioned(frame.rows + kStripHeight, frame.cols, CV_8UC3);
    frame.copyTo(captioned.rowRange(0, frame.rows));
    const cv::Rect strip{0, frame.rows, frame.cols, kStripHeight};
    drawLegend(captioned, strip, drawCaption(captioned, strip, caption),
               events.labels == nullptr ? Legend::Polarity : Legend::Clusters);
    return captioned;
}

cv::Mat FrameRenderer::render(const cv::Mat& raster, const Overlay& overlay) const {
    cv::Mat frame = colourRaster(raster, picture);
    const int thickness = std::min(picture.width, picture.height) < kThumbnailSide ? 1 : 2;
    drawOutlines(frame, outlines(overlay.clusters, sensor, picture, thickness), thickness);
    drawCrosses(frame, overlay.centroids, sensor, thickness);
    return frame;
}

}  // namespace kelvora::drawing
