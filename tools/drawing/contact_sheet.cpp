// SPDX-License-Identifier: MIT
#include "drawing/contact_sheet.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "drawing/caption.hpp"
#include "drawing/frame_renderer.hpp"
#include "drawing/palette.hpp"

namespace kelvora::drawing {

namespace {

constexpr int kSheetWidth = 1920;
constexpr int kSheetHeight = 1200;
constexpr int kGap = 6;

struct Layout {
    int columns;
    int rows;
    cv::Size thumbnail;

    cv::Size tile() const {
        return {thumbnail.width + kGap, thumbnail.height + kStripHeight + kGap};
    }
    cv::Size sheet() const {
        return {columns * tile().width + kGap, rows * tile().height + kGap + kStripHeight};
    }
};

// The largest thumbnail size at which all thumbnails fit. Enlarging by whole factors only keeps the
// pixels square.
cv::Size thumbnailSize(cv::Size sensor, int columns, int rows) {
    const int width = (kSheetWidth - kGap) / columns - kGap;
    const int height = (kSheetHeight - kGap - kStripHeight) / rows - kGap - kStripHeight;
    const double fitting = std::min(static_cast<double>(width) / sensor.width,
                                    static_cast<double>(height) / sensor.height);
    const double scale = fitting < 1 ? fitting : std::floor(fitting);
    return {std::max(1, static_cast<int>(sensor.width * scale)),
            std::max(1, static_cast<int>(sensor.height * scale))};
}

double distanceFrom16To10(cv::Size sheet) {
    return std::abs(std::log(static_cast<double>(sheet.width) / sheet.height / 1.6));
}

// The number of columns that makes the thumbnails largest. Ties go to the sheet with the best
// aspect ratio.
Layout bestLayout(cv::Size sensor, int count) {
    Layout best{};
    for (int columns = 1; columns <= count; ++columns) {
        const int rows = (count + columns - 1) / columns;
        const Layout layout{columns, rows, thumbnailSize(sensor, columns, rows)};
        const bool is_larger = layout.thumbnail.area() > best.thumbnail.area();
        const bool is_nicer = layout.thumbnail.area() == best.thumbnail.area() &&
                              distanceFrom16To10(layout.sheet()) < distanceFrom16To10(best.sheet());
        if (is_larger || is_nicer) {
            best = layout;
        }
    }
    return best;
}

cv::Size rasterSize(cv::Size sensor) {
    return {std::min(sensor.width, kSheetWidth), std::min(sensor.height, kSheetHeight)};
}

}  // namespace

ContactSheet::ContactSheet(cv::Size sensor_, std::size_t tile_count_)
    : sensor{sensor_}, tile_count{tile_count_} {
    if (sensor.width < 1 || sensor.height < 1 || tile_count < 1) {
        throw std::invalid_argument("a contact sheet needs at least one pixel and one tile");
    }
}

void ContactSheet::add(EventSpan events, const Overlay& overlay, const std::string& caption) {
    if (wantsNext()) {
        legend = events.labels == nullptr ? Legend::Polarity : Legend::Clusters;
        tiles.push_back({rasterize(events, sensor, rasterSize(sensor)), overlay, caption});
    }
    ++added;
    if (tiles.size() == 2 * tile_count) {
        dropEveryOther();
    }
}

void ContactSheet::dropEveryOther() {
    for (std::size_t i = 1; i < tile_count; ++i) {
        tiles[i] = std::move(tiles[2 * i]);
    }
    tiles.resize(tile_count);
    stride *= 2;
}

std::vector<std::uint64_t> ContactSheet::shownWindows() const {
    std::vector<std::uint64_t> indices;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        indices.push_back(i * stride);
    }
    return indices;
}

cv::Mat ContactSheet::compose() const {
    if (tiles.empty()) {
        return {};
    }
    const Layout layout = bestLayout(sensor, static_cast<int>(tiles.size()));
    const FrameRenderer renderer{sensor, layout.thumbnail};
    const cv::Size thumbnail = layout.thumbnail;
    cv::Mat sheet(layout.sheet(), CV_8UC3, cv::Scalar(kStripColour));
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        const int column = static_cast<int>(i) % layout.columns;
        const int row = static_cast<int>(i) / layout.columns;
        const cv::Point corner{kGap + column * layout.tile().width,
                               kGap + row * layout.tile().height};
        renderer.render(tiles[i].raster, tiles[i].overlay)
            .copyTo(sheet(cv::Rect{corner, thumbnail}));
        const cv::Rect strip{corner.x, corner.y + thumbnail.height, thumbnail.width, kStripHeight};
        drawCaption(sheet, strip, tiles[i].caption);
    }
    drawLegend(sheet, {0, sheet.rows - kStripHeight, sheet.cols, kStripHeight}, 0, legend);
    return sheet;
}

}  // namespace kelvora::drawing
