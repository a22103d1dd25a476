// SPDX-License-Identifier: MIT
#include "drawing/frame_renderer.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "drawing/caption.hpp"
#include "drawing/palette.hpp"
#include "tools/drawing/picture_probe.hpp"

namespace kelvora::drawing {
namespace {

using Events = std::vector<Event2D>;
using Clusters = std::vector<ClusterGeometry>;

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

ClusterGeometry box(float x, float y, float width, float height) {
    return {x, y, width, height, 0ULL};
}

// A picture of the size of the sensor: scale 1, lines of 2 pixels.
cv::Mat renderBoxes(const Clusters& clusters) {
    return FrameRenderer({640, 480}, {640, 480}).render(Events{}, {clusters, {}, {}});
}

// How many pixels lie between a pixel and the next outline in one direction.
int stepsToOutline(const cv::Mat& picture, cv::Point from, cv::Point direction) {
    const cv::Rect whole{{0, 0}, picture.size()};
    int steps = 0;
    cv::Point next = from + direction;
    while (whole.contains(next) && picture.at<cv::Vec3b>(next) != kBoxColour) {
        ++steps;
        next += direction;
    }
    return steps;
}

// The rectangle that an outline encloses, seen from a pixel within.
cv::Rect enclosedFrom(const cv::Mat& picture, int x, int y) {
    const int left = x - stepsToOutline(picture, {x, y}, {-1, 0});
    const int right = x + stepsToOutline(picture, {x, y}, {1, 0});
    const int top = y - stepsToOutline(picture, {x, y}, {0, -1});
    const int bottom = y + stepsToOutline(picture, {x, y}, {0, 1});
    return {left, top, right - left + 1, bottom - top + 1};
}

TEST(FrameRenderer, EnlargesSmallSensorsByWholeFactorsToAComfortableSize) {
    EXPECT_EQ(FrameRenderer({128, 128}).pictureSize(), cv::Size(512, 512));
    EXPECT_EQ(FrameRenderer({304, 240}).pictureSize(), cv::Size(608, 480));
    EXPECT_EQ(FrameRenderer({346, 260}).pictureSize(), cv::Size(692, 520));
    EXPECT_EQ(FrameRenderer({1, 1}).pictureSize(), cv::Size(480, 480));
}

TEST(FrameRenderer, ShowsLargeSensorsPixelByPixel) {
    EXPECT_EQ(FrameRenderer({640, 480}).pictureSize(), cv::Size(640, 480));
    EXPECT_EQ(FrameRenderer({1280, 720}).pictureSize(), cv::Size(1280, 720));
}

TEST(FrameRenderer, KeepsPicturesOfExtremeSensorsSmall) {
    EXPECT_EQ(FrameRenderer({2000, 3}).pictureSize(), cv::Size(4000, 6));
    EXPECT_EQ(FrameRenderer({65536, 65536}).pictureSize(), cv::Size(4096, 4096));
    EXPECT_EQ(FrameRenderer({65536, 1}).pictureSize(), cv::Size(4096, 1));
}

TEST(FrameRenderer, RefusesSensorsAndPicturesWithoutPixels) {
    EXPECT_THROW(FrameRenderer({0, 480}), std::invalid_argument);
    EXPECT_THROW(FrameRenderer({640, -1}), std::invalid_argument);
    EXPECT_THROW(FrameRenderer({640, 480}, {0, 10}), std::invalid_argument);
}

TEST(FrameRenderer, ReturnsAColourPictureOfTheAnnouncedSize) {
    const FrameRenderer renderer{{346, 260}};
    const cv::Mat picture = renderer.render(Events{}, {});

    EXPECT_EQ(picture.size(), renderer.pictureSize());
    EXPECT_EQ(picture.type(), CV_8UC3);
    EXPECT_EQ(countOf(picture, kBackgroundColour), 692 * 520);
}

TEST(FrameRenderer, DrawsEventsInTheColourOfTheirPolarity) {
    const cv::Mat picture =
        FrameRenderer({346, 260}).render(Events{{10, 20, 1, 0}, {345, 259, 0, 0}}, {});

    EXPECT_EQ(colourAt(picture, 20, 40), kOnColour);
    EXPECT_EQ(colourAt(picture, 21, 41), kOnColour);
    EXPECT_EQ(colourAt(picture, 691, 519), kOffColour);
    EXPECT_EQ(countOf(picture, kOnColour), 4);
    EXPECT_EQ(countOf(picture, kOffColour), 4);
}

TEST(FrameRenderer, KeepsASingleEventVisibleInAThumbnail) {
    const cv::Mat picture =
        FrameRenderer({1280, 720}, {160, 90}).render(Events{{643, 331, 1, 0}}, {});

    EXPECT_EQ(colourAt(picture, 80, 41), kOnColour);
}

TEST(FrameRenderer, OutlinesClustersAroundTheAreaTheyCover) {
    EXPECT_EQ(enclosedFrom(renderBoxes({box(100, 50, 30, 20)}), 110, 60),
              cv::Rect(100, 50, 30, 20));
}

TEST(FrameRenderer, ScalesBoxesLikeEvents) {
    const FrameRenderer renderer{{128, 128}};

    EXPECT_EQ(enclosedFrom(renderer.render(Events{}, {{box(10, 20, 5, 6)}, {}, {}}), 45, 90),
              cv::Rect(40, 80, 20, 24));
}

TEST(FrameRenderer, RoundsFractionalBoxesOutwards) {
    EXPECT_EQ(enclosedFrom(renderBoxes({box(100.7F, 50.2F, 30.5F, 20.1F)}), 110, 60),
              cv::Rect(100, 50, 32, 21));
}

TEST(FrameRenderer, DoesNotCoverTheEventsOfACluster) {
    Events events;
    for (unsigned short x = 100; x < 130; ++x) {
        for (unsigned short y = 50; y < 70; ++y) {
            events.emplace_back(x, y, static_cast<unsigned char>(1), 0);
        }
    }
    const cv::Mat picture =
        FrameRenderer({640, 480}).render(events, {{box(100, 50, 30, 20)}, {}, {}});

    EXPECT_EQ(countOf(picture, kOnColour), 600);
}

TEST(FrameRenderer, SetsOutlinesOffFromTheEventsAroundThem) {
    Events events;
    for (unsigned short x = 0; x < 640; ++x) {
        events.emplace_back(x, static_cast<unsigned short>(60), static_cast<unsigned char>(1), 0);
    }
    const cv::Mat picture =
        FrameRenderer({640, 480}).render(events, {{box(100, 50, 30, 20)}, {}, {}});

    EXPECT_EQ(colourAt(picture, 96, 60), kOnColour);
    EXPECT_EQ(colourAt(picture, 97, 60), kBackgroundColour);
    EXPECT_EQ(colourAt(picture, 98, 60), kBoxColour);
    EXPECT_EQ(colourAt(picture, 99, 60), kBoxColour);
    EXPECT_EQ(colourAt(picture, 100, 60), kOnColour);
}

TEST(FrameRenderer, MarksCentroidsByCrossesInTheMiddleOfTheirPixels) {
    const cv::Mat picture =
        FrameRenderer({64, 48}, {640, 480}).render(Events{}, {{}, {{20, 10}}, {}});

    EXPECT_EQ(colourAt(picture, 205, 105), kBoxColour);
    EXPECT_EQ(colourAt(picture, 210, 105), kBoxColour);
    EXPECT_EQ(colourAt(picture, 205, 100), kBoxColour);
    EXPECT_EQ(colourAt(picture, 210, 110), kBackgroundColour);
    EXPECT_EQ(colourAt(picture, 220, 105), kBackgroundColour);
}

TEST(FrameRenderer, LeavesOutCentroidsOffTheSensor) {
    const cv::Mat picture = FrameRenderer({64, 48}, {640, 480})
                                .render(Events{}, {{}, {{64, 10}, {-2, 10}, {kNaN, 10}}, {}});

    EXPECT_EQ(countOf(picture, kBoxColour), 0);
}

// The dark line around a box must not cross the outline of its neighbour.
TEST(FrameRenderer, LeavesTheOutlinesOfNeighboursWhole) {
    const cv::Mat one = renderBoxes({box(100, 50, 30, 20)});
    const cv::Mat both = renderBoxes({box(100, 50, 30, 20), box(131, 50, 30, 20)});

    for (int y = 48; y < 72; ++y) {
        EXPECT_EQ(colourAt(one, 131, y), kBoxColour);
        EXPECT_EQ(colourAt(both, 131, y), kBoxColour);
    }
}

TEST(FrameRenderer, ClosesOutlinesAtTheEdgeOfTheSensor) {
    const cv::Mat picture = renderBoxes({box(-10, 460, 30, 1e30F)});

    EXPECT_EQ(enclosedFrom(picture, 10, 470), cv::Rect(2, 460, 18, 18));
}

TEST(FrameRenderer, ShowsBoxesWithoutAreaAsSmallMarks) {
    const cv::Mat picture = renderBoxes({box(100, 50, 0, 0)});

    EXPECT_EQ(colourAt(picture, 98, 49), kBoxColour);
    EXPECT_EQ(countOf(picture, kBoxColour), 7 * 7 - 3 * 3);
}

TEST(FrameRenderer, DrawsNothingForBoxesOutsideOfTheSensor) {
    const cv::Mat picture =
        renderBoxes({box(700, 10, 20, 20), box(10, 500, 20, 20), box(-50, 10, 20, 20),
                     box(10, -50, 20, 20), box(-1e30F, 1e30F, 1, 1)});

    EXPECT_EQ(countOf(picture, kBackgroundColour), 640 * 480);
}

TEST(FrameRenderer, DrawsNothingForInvalidBoxes) {
    const cv::Mat picture =
        renderBoxes({box(kNaN, 10, 20, 20), box(10, kNaN, 20, 20), box(10, 10, kNaN, 20),
                     box(10, 10, 20, kNaN), box(10, 10, kInfinity, 20), box(-kInfinity, 10, 20, 20),
                     box(100, 100, -20, 20), box(100, 100, 20, -20)});

    EXPECT_EQ(countOf(picture, kBackgroundColour), 640 * 480);
}

TEST(FrameRenderer, OutlinesAClusterThatFillsTheSensor) {
    const cv::Mat picture = renderBoxes({box(0, 0, 640, 480)});

    EXPECT_EQ(enclosedFrom(picture, 320, 240), cv::Rect(2, 2, 636, 476));
}

TEST(FrameRenderer, SurvivesBoxesInPicturesOfOnePixel) {
    const cv::Mat picture =
        FrameRenderer({640, 480}, {1, 1}).render(Events{}, {{box(0, 0, 640, 480)}, {}, {}});

    EXPECT_EQ(picture.size(), cv::Size(1, 1));
}

TEST(FrameRenderer, PutsTheCaptionBelowThePicture) {
    const FrameRenderer renderer{{346, 260}};
    const Events events{{10, 20, 1, 0}};
    const cv::Mat plain = renderer.render(events, {});
    const cv::Mat captioned = renderer.render(events, {}, "a caption");

    ASSERT_EQ(captioned.size(), cv::Size(692, 520 + kStripHeight));
    EXPECT_EQ(cv::norm(captioned.rowRange(0, 520), plain, cv::NORM_INF), 0.0);
    EXPECT_GT(countOfText(captioned.rowRange(520, captioned.rows)), 10);
}

TEST(FrameRenderer, ShowsEventsOnTheSensorOnlyAndIgnoresTheRest) {
    const cv::Mat picture =
        FrameRenderer({640, 480}).render(Events{{640, 0, 1, 0}, {0, 480, 1, 0}}, {});

    EXPECT_EQ(countOf(picture, kBackgroundColour), 640 * 480);
}

}  // namespace
}  // namespace kelvora::drawing
