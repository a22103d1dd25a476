// SPDX-License-Identifier: MIT
// Tracked objects, as drawn by the frame renderer.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "drawing/frame_renderer.hpp"
#include "drawing/palette.hpp"
#include "tools/drawing/picture_probe.hpp"

namespace kelvora::drawing {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr int kPixels = 640 * 480;

using Trail = std::vector<cv::Point2f>;

TrackMark mark(int id, float x, float y, float width, float height, const Trail& trail = {}) {
    return {id, {x, y, width, height, 0ULL}, trail};
}

// A picture of the size of the sensor: scale 1, lines of 2 pixels.
cv::Mat render(const std::vector<TrackMark>& tracks,
               const std::vector<ClusterGeometry>& clusters = {}) {
    return FrameRenderer({640, 480}, {640, 480})
        .render(EventSpan(nullptr, 0, nullptr), {clusters, {}, tracks});
}

int drawnPixels(const cv::Mat& picture) {
    return static_cast<int>(picture.total()) - countOf(picture, kBackgroundColour);
}

TEST(TrackMarks, AreOutlinedInTheColourOfTheirNumber) {
    for (const int id : {1, 2, 5, 1000}) {
        const cv::Mat picture = render({mark(id, 100, 50, 30, 20)});
        const cv::Vec3b colour = idColour(static_cast<std::size_t>(id));
        EXPECT_EQ(colourAt(picture, 99, 60), colour);
        EXPECT_EQ(colourAt(picture, 130, 60), colour);
        EXPECT_EQ(colourAt(picture, 115, 70), colour);
        EXPECT_EQ(colourAt(picture, 115, 60), kBackgroundColour);
    }
}

TEST(TrackMarks, HaveTheirNumberAboveTheBox) {
    const cv::Mat picture = render({mark(12, 100, 50, 30, 20)});
    const cv::Mat above = picture({95, 20, 50, 27});
    EXPECT_GT(countOf(above, idColour(12)), 20);
    EXPECT_EQ(drawnPixels(picture({105, 55, 20, 10})), 0);
}

TEST(TrackMarks, HaveTheirNumberInTheBoxAtTheUpperEdge) {
    const cv::Mat picture = render({mark(12, 100, 0, 80, 60)});
    EXPECT_GT(countOf(picture({102, 3, 70, 20}), idColour(12)), 20);
}

TEST(TrackMarks, ShowDifferentNumbersDifferently) {
    // The same colour.
    EXPECT_GT(cv::norm(render({mark(1, 100, 50, 30, 20)}), render({mark(9, 100, 50, 30, 20)}),
                       cv::NORM_INF),
              0.0);
}

TEST(TrackMarks, ShowTheTrailThroughTheMiddleOfItsPixels) {
    const cv::Mat picture =
        render({mark(4, 100, 50, 30, 20, {{200, 300}, {200, 400}, {300, 400}})});
    EXPECT_EQ(colourAt(picture, 200, 350), idColour(4));
    EXPECT_EQ(colourAt(picture, 250, 400), idColour(4));
    EXPECT_EQ(colourAt(picture, 250, 350), kBackgroundColour);
    EXPECT_EQ(drawnPixels(render({mark(4, 100, 50, 30, 20)})({190, 290, 120, 120})), 0);
}

TEST(TrackMarks, AreScaledLikeEvents) {
    const cv::Mat picture = FrameRenderer({64, 48}, {640, 480})
                                .render(EventSpan(nullptr, 0, nullptr),
                                        {{}, {}, {mark(4, 10, 20, 3, 2, {{40, 10}, {40, 30}})}});
    EXPECT_EQ(colourAt(picture, 99, 210), idColour(4));
    EXPECT_EQ(colourAt(picture, 405, 205), idColour(4));
    EXPECT_EQ(colourAt(picture, 440, 205), kBackgroundColour);
}

TEST(TrackMarks, AreDrawnOverClusters) {
    const cv::Mat picture =
        render({mark(4, 100, 50, 30, 20)}, {ClusterGeometry(100, 50, 30, 20, 0)});
    EXPECT_EQ(countOf(picture, kBoxColour), 0);
    EXPECT_EQ(colourAt(picture, 99, 60), idColour(4));
}

TEST(TrackMarks, LeaveOutBoxesAndNumbersOutsideOfTheSensor) {
    const cv::Mat picture =
        render({mark(1, 700, 100, 20, 20), mark(2, 100, 500, 20, 20), mark(4, -50, 100, 20, 20),
                mark(5, 100, -50, 20, 20), mark(6, 1e30F, -1e30F, 1, 1)});
    EXPECT_EQ(drawnPixels(picture), 0);
    EXPECT_EQ(countOf(picture, kBackgroundColour), kPixels);
}

TEST(TrackMarks, LeaveOutInvalidBoxes) {
    EXPECT_EQ(drawnPixels(render({mark(1, kNaN, 10, 20, 20), mark(2, 10, kInfinity, 20, 20),
                                  mark(4, 100, 100, -20, 20)})),
              0);
}

TEST(TrackMarks, LeaveOutPlacesOfTheTrailThatAreNotFinite) {
    const Trail trail = {{200, 300}, {kNaN, 300}, {300, kInfinity}, {-kInfinity, 0}, {200, 400}};
    const cv::Mat picture = render({mark(4, 100, 50, 30, 20, trail)});
    const cv::Mat straight = render({mark(4, 100, 50, 30, 20, {{200, 300}, {200, 400}})});
    EXPECT_EQ(cv::norm(picture, straight, cv::NORM_INF), 0.0);
    EXPECT_EQ(drawnPixels(render({mark(4, -90, 50, 30, 20, {{kNaN, kNaN}})})), 0);
}

TEST(TrackMarks, ClipTrailsThatLeaveTheSensor) {
    const cv::Mat picture = render({mark(4, 100, 50, 30, 20, {{320, 240}, {1e30F, 240}})});
    EXPECT_EQ(colourAt(picture, 600, 240), idColour(4));
    EXPECT_EQ(drawnPixels(render({mark(4, -90, 50, 30, 20, {{-10, -10}, {-10, 900}})})), 0);
}

TEST(TrackMarks, SurviveInPicturesOfOnePixel) {
    const cv::Mat picture = FrameRenderer({640, 480}, {1, 1})
                                .render(EventSpan(nullptr, 0, nullptr),
                                        {{}, {}, {mark(4, 0, 0, 640, 480, {{0, 0}, {639, 479}})}});
    EXPECT_EQ(picture.size(), cv::Size(1, 1));
}

}  // namespace
}  // namespace kelvora::drawing
