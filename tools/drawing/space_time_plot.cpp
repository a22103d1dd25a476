// SPDX-License-Identifier: MIT
#include "drawing/space_time_plot.hpp"

#include <array>
#include <opencv2/imgproc.hpp>
#include <stdexcept>

#include "drawing/caption.hpp"
#include "drawing/palette.hpp"

namespace kelvora::drawing {

namespace {

constexpr int kWidth = 1120;
constexpr int kHeight = 720;
constexpr double kFontScale = 0.5;

// A parallel projection, given by the origin and the three axes in the picture.
const cv::Point2d kOrigin{70, 240};
const cv::Point2d kAlongX{240, -180};
const cv::Point2d kAlongY{0, 380};
const cv::Point2d kAlongTime{740, 60};

/// \param x,y,t  From 0 to 1.
cv::Point project(double x, double y, double t) {
    return kOrigin + kAlongX * x + kAlongY * y + kAlongTime * t;
}

void drawEdges(cv::Mat& picture) {
    const auto line = [&picture](const cv::Point& from, const cv::Point& to) {
        cv::line(picture, from, to, cv::Scalar(kNoiseColour), 1, cv::LINE_AA);
    };
    for (const double a : {0.0, 1.0}) {
        for (const double b : {0.0, 1.0}) {
            line(project(0, a, b), project(1, a, b));
            line(project(a, 0, b), project(a, 1, b));
            line(project(a, b, 0), project(a, b, 1));
        }
    }
}

void writeAt(cv::Mat& picture, const cv::Point& where, const std::string& text) {
    cv::putText(picture, text, where, cv::FONT_HERSHEY_SIMPLEX, kFontScale, cv::Scalar(kTextColour),
                1, cv::LINE_AA);
}

void nameAxes(cv::Mat& picture) {
    writeAt(picture, project(0.5, 0, 0) + cv::Point(-24, -10), "x");
    writeAt(picture, project(0, 0.5, 0) + cv::Point(-22, 0), "y");
    writeAt(picture, project(0, 1, 0.5) + cv::Point(-10, 26), "time");
}

}  // namespace

cv::Mat plotSpaceTime(EventSpan events, cv::Size sensor, std::uint64_t start, std::uint64_t end,
                      const std::string& caption) {
    if (sensor.empty() || start >= end) {
        throw std::invalid_argument("a plot needs a sensor with pixels and a window with a length");
    }
    cv::Mat picture(kHeight + kStripHeight, kWidth, CV_8UC3, cv::Scalar(kBackgroundColour));
    drawEdges(picture);
    nameAxes(picture);
    for (std::size_t i = 0; i < events.count; ++i) {
        const Event2D& event = events.first[i];
        if (event.x >= sensor.width || event.y >= sensor.height || event.timestamp < start ||
            event.timestamp >= end) {
            continue;
        }
        const double time =
            static_cast<double>(event.timestamp - start) / static_cast<double>(end - start);
        const cv::Point place =
            project((event.x + 0.5) / sensor.width, (event.y + 0.5) / sensor.height, time);
        picture(cv::Rect(place, cv::Size(2, 2))).setTo(cv::Scalar(eventColour(events, i)));
    }
    const cv::Rect strip{0, kHeight, kWidth, kStripHeight};
    drawLegend(picture, strip, drawCaption(picture, strip, caption),
               events.labels == nullptr ? Legend::Polarity : Legend::Clusters);
    return picture;
}

}  // namespace kelvora::drawing
