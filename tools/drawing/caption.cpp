// SPDX-License-Identifier: MIT
#include "drawing/caption.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "drawing/palette.hpp"

namespace kelvora::drawing {

namespace {

constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;
constexpr double kFontScale = 0.45;
constexpr double kSmallestFontScale = 0.25;
constexpr int kMargin = 8;
constexpr int kSwatchSide = 10;

std::string seconds(std::uint64_t microseconds, bool exact) {
    const std::uint64_t whole = microseconds / 1'000'000;
    const std::uint64_t rest = microseconds % 1'000'000;
    return exact ? fmt::format("{}.{:06}", whole, rest)
                 : fmt::format("{}.{:03}", whole, rest / 1000);
}

int textWidth(const std::string& text, double font_scale) {
    return cv::getTextSize(text, kFont, font_scale, 1, nullptr).width;
}

double fittingFontScale(const std::string& text, int width) {
    const double fitting = kFontScale * width / std::max(1, textWidth(text, kFontScale));
    return std::clamp(fitting, kSmallestFontScale, kFontScale);
}

void writeText(cv::Mat& strip, int left, const std::string& text, double font_scale) {
    const int capital_height = cv::getTextSize("H", kFont, font_scale, 1, nullptr).height;
    const cv::Point origin{left, (strip.rows + capital_height) / 2};
    cv::putText(strip, text, origin, kFont, font_scale, cv::Scalar(kTextColour), 1, cv::LINE_AA);
}

struct LegendEntry {
    const char* name;
    const cv::Vec3b& colour;
    bool is_box;
};

const std::vector<LegendEntry> kPolarityLegend = {
    {"on", kOnColour, false}, {"off", kOffColour, false}, {"cluster", kBoxColour, true}};
const std::vector<LegendEntry> kClusterLegend = {{"noise", kNoiseColour, false},
                                                 {"cluster, events in a colour", kBoxColour, true}};

int entryWidth(const LegendEntry& entry) {
    return kSwatchSide + 6 + textWidth(entry.name, kFontScale) + kMargin * 2;
}

}  // namespace

std::string windowCaption(std::uint64_t begin, std::uint64_t end, std::size_t cluster_count) {
    const bool exact = begin % 1000 != 0 || end % 1000 != 0;
    return fmt::format("{} - {} s, {} cluster{}", seconds(begin, exact), seconds(end, exact),
                       cluster_count, cluster_count == 1 ? "" : "s");
}

int drawCaption(cv::Mat& picture, const cv::Rect& strip, const std::string& text) {
    cv::Mat area = picture(strip);
    area.setTo(cv::Scalar(kStripColour));
    const double font_scale = fittingFontScale(text, strip.width - 2 * kMargin);
    writeText(area, kMargin, text, font_scale);
    return kMargin + textWidth(text, font_scale);
}

void drawLegend(cv::Mat& picture, const cv::Rect& strip, int used, Legend legend) {
    const auto& entries = legend == Legend::Polarity ? kPolarityLegend : kClusterLegend;
    int width = kMargin;
    for (const LegendEntry& entry : entries) {
        width += entryWidth(entry);
    }
    if (used + width > strip.width) {
        return;
    }
    cv::Mat area = picture(strip);
    int left = strip.width - width + kMargin * 2;
    for (const LegendEntry& entry : entries) {
        const cv::Rect swatch{left, (strip.height - kSwatchSide) / 2, kSwatchSide, kSwatchSide};
        cv::rectangle(area, swatch, cv::Scalar(entry.colour), entry.is_box ? 1 : cv::FILLED);
        writeText(area, left + kSwatchSide + 6, entry.name, kFontScale);
        left += entryWidth(entry);
    }
}

}  // namespace kelvora::drawing
