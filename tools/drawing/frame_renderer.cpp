// SPDX-License-Identifier: MIT
#include "drawing/frame_renderer.hpp"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <stdexcept>
#include <string>

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
    // Rounded to the nearest factor: 240 rows look as good as 260.
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

// The pixels of a picture that an interval on the sensor touches. Widened to a visible size, and
// clamped near the picture, because a float can exceed the range of an int.
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

struct Outline {
    cv::Rect rect;
    cv::Vec3b colour;
};

void drawRing(cv::Mat& frame, const cv::Rect& ring, const cv::Vec3b& colour) {
    if (!ring.empty()) {
        cv::rectangle(frame, ring, cv::Scalar(colour));
    }
}

std::vector<Outline> outlines(const Overlay& overlay, cv::Size sensor, cv::Size picture,
                              int thickness) {
    const cv::Rect whole{{0, 0}, picture};
    std::vector<Outline> result;
    const auto add = [&](const ClusterGeometry& cluster, const cv::Vec3b& colour) {
        if (!isDrawable(cluster)) {
            return;
        }
        const cv::Rect box = boxInPicture(cluster, sensor, picture);
        if (!(box & whole).empty()) {
            result.push_back({grown(box, thickness) & whole, colour});
        }
    };
    for (const ClusterGeometry& cluster : overlay.clusters) {
        add(cluster, kBoxColour);
    }
    for (const TrackMark& track : overlay.tracks) {
        add(track.box, idColour(static_cast<std::size_t>(track.id)));
    }
    return result;
}

// A dark line around the bright one separates an outline from the events around it. All dark lines
// are drawn first, so that none crosses the outline of a neighbour.
void drawOutlines(cv::Mat& frame, const std::vector<Outline>& outlines, int thickness) {
    for (const Outline& outline : outlines) {
        drawRing(frame, grown(outline.rect, 1), kBackgroundColour);
    }
    for (const Outline& outline : outlines) {
        for (int i = 0; i < thickness; ++i) {
            drawRing(frame, grown(outline.rect, -i), outline.colour);
        }
    }
}

// The centre of a sensor pixel in the picture, clamped near the picture, because a float can exceed
// the range of an int.
cv::Point placeInPicture(const cv::Point2f& place, cv::Size sensor, cv::Size picture) {
    const double column = (place.x + 0.5) * picture.width / sensor.width;
    const double row = (place.y + 0.5) * picture.height / sensor.height;
    return {static_cast<int>(std::clamp(column, -1.0 * picture.width, 2.0 * picture.width)),
            static_cast<int>(std::clamp(row, -1.0 * picture.height, 2.0 * picture.height))};
}

// The number of a track is drawn above its box, or inside the box at the upper edge of the picture.
void drawNumber(cv::Mat& frame, const cv::Rect& box, int id, int thickness) {
    const double size = 0.4 + 0.1 * thickness;
    const cv::Point place(std::max(0, box.x - thickness),
                          box.y > 20 ? box.y - 3 - thickness : std::max(0, box.y) + 14);
    const std::string text = std::to_string(id);
    cv::putText(frame, text, place, cv::FONT_HERSHEY_SIMPLEX, size, cv::Scalar(kBackgroundColour),
                thickness + 2, cv::LINE_AA);
    cv::putText(frame, text, place, cv::FONT_HERSHEY_SIMPLEX, size,
                cv::Scalar(idColour(static_cast<std::size_t>(id))), thickness, cv::LINE_AA);
}

void drawTracks(cv::Mat& frame, const std::vector<TrackMark>& tracks, cv::Size sensor,
                int thickness) {
    for (const TrackMark& track : tracks) {
        std::vector<cv::Point> trail;
        for (const cv::Point2f& place : track.trail) {
            if (std::isfinite(place.x) && std::isfinite(place.y)) {
                trail.push_back(placeInPicture(place, sensor, frame.size()));
            }
        }
        cv::polylines(frame, trail, false, cv::Scalar(idColour(static_cast<std::size_t>(track.id))),
                      thickness, cv::LINE_AA);
        if (!isDrawable(track.box)) {
            continue;
        }
        const cv::Rect box = boxInPicture(track.box, sensor, frame.size());
        if (!(box & cv::Rect({0, 0}, frame.size())).empty()) {
            drawNumber(frame, box, track.id, thickness);
        }
    }
}

// Crosses have a dark rim, like outlines.
void drawCrosses(cv::Mat& frame, const std::vector<cv::Point2f>& centroids, cv::Size sensor,
                 int thickness) {
    for (const cv::Point2f& centroid : centroids) {
        if (!(0 <= centroid.x && centroid.x < static_cast<float>(sensor.width) && 0 <= centroid.y &&
              centroid.y < static_cast<float>(sensor.height))) {
            continue;
        }
        const cv::Point place = placeInPicture(centroid, sensor, frame.size());
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
    drawOutlines(frame, outlines(overlay, sensor, picture, thickness), thickness);
    drawTracks(frame, overlay.tracks, sensor, thickness);
    drawCrosses(frame, overlay.centroids, sensor, thickness);
    return frame;
}

}  // namespace kelvora::drawing
