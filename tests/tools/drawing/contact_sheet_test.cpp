// SPDX-License-Identifier: MIT
#include "drawing/contact_sheet.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "drawing/palette.hpp"
#include "tools/drawing/picture_probe.hpp"

namespace kelvora::drawing {
namespace {

using Events = std::vector<Event2D>;
using testing::ElementsAre;
using testing::IsEmpty;

ContactSheet sheetOf(std::uint64_t windows, cv::Size sensor = {346, 260}) {
    ContactSheet sheet{sensor};
    for (std::uint64_t i = 0; i < windows; ++i) {
        sheet.add(Events{}, {}, "");
    }
    return sheet;
}

TEST(ContactSheet, ShowsEveryWindowOfAShortRecording) {
    EXPECT_THAT(sheetOf(1).shownWindows(), ElementsAre(0));
    EXPECT_THAT(sheetOf(2).shownWindows(), ElementsAre(0, 1));
    EXPECT_THAT(sheetOf(3).shownWindows(), ElementsAre(0, 1, 2));
}

class ContactSheetOfManyWindows : public testing::TestWithParam<std::uint64_t> {};

TEST_P(ContactSheetOfManyWindows, ShowsEvenlySpacedOnesFromTheFirstToNearTheLast) {
    const std::uint64_t windows = GetParam();
    const std::vector<std::uint64_t> shown = sheetOf(windows).shownWindows();

    ASSERT_GE(shown.size(), std::min<std::uint64_t>(windows, 12));
    ASSERT_LT(shown.size(), 24U);
    const std::uint64_t spacing = shown[1] - shown[0];
    for (std::size_t i = 0; i < shown.size(); ++i) {
        EXPECT_EQ(shown[i], i * spacing);
    }
    EXPECT_LT(shown.back(), windows);
    EXPECT_GE(shown.back() + spacing, windows);
}

INSTANTIATE_TEST_SUITE_P(Lengths, ContactSheetOfManyWindows,
                         testing::Values(2, 11, 12, 13, 23, 24, 25, 47, 48, 49, 1000, 100'000));

TEST(ContactSheet, WantsExactlyTheWindowsThatItKeepsUntilItMustDropSome) {
    ContactSheet sheet{{10, 10}, 2};
    std::vector<std::uint64_t> wanted;
    for (std::uint64_t i = 0; i < 17; ++i) {
        if (sheet.wantsNext()) {
            wanted.push_back(i);
        }
        sheet.add(Events{}, {}, "");
    }

    EXPECT_THAT(wanted, ElementsAre(0, 1, 2, 3, 4, 6, 8, 12, 16));
    EXPECT_THAT(sheet.shownWindows(), ElementsAre(0, 8, 16));
}

// The windows must stay in order when every other one is dropped.
TEST(ContactSheet, ShowsTheEventsOfTheWindowsThatItNames) {
    ContactSheet sheet{{40, 30}, 1};
    for (const bool is_on : {true, false, false, false}) {
        sheet.add(Events{{20, 15, static_cast<unsigned char>(is_on), 0}}, {}, "");
    }

    EXPECT_THAT(sheet.shownWindows(), ElementsAre(0));
    const cv::Mat picture = sheet.compose();
    const cv::Mat tiles = picture.rowRange(0, picture.rows - 40);
    EXPECT_GT(countOf(tiles, kOnColour), 0);
    EXPECT_EQ(countOf(tiles, kOffColour), 0);
}

TEST(ContactSheet, IsEmptyWithoutWindows) {
    EXPECT_TRUE(sheetOf(0).compose().empty());
    EXPECT_THAT(sheetOf(0).shownWindows(), IsEmpty());
}

TEST(ContactSheet, IsAboutAsWideAsAScreen) {
    for (const std::uint64_t windows : {12U, 18U, 20U, 1000U}) {
        for (const cv::Size sensor :
             {cv::Size{346, 260}, cv::Size{1280, 720}, cv::Size{640, 480}}) {
            const cv::Mat picture = sheetOf(windows, sensor).compose();
            const double aspect = static_cast<double>(picture.cols) / picture.rows;
            EXPECT_GT(aspect, 1.2) << windows << " windows of " << sensor;
            EXPECT_LT(aspect, 2.2) << windows << " windows of " << sensor;
            EXPECT_EQ(picture.type(), CV_8UC3);
        }
    }
}

TEST(ContactSheet, StaysWithinItsSizeForAnySensor) {
    for (const cv::Size sensor : {cv::Size{1, 1}, cv::Size{128, 128}, cv::Size{65536, 16},
                                  cv::Size{16, 65536}, cv::Size{4000, 3000}}) {
        const cv::Mat picture = sheetOf(15, sensor).compose();
        EXPECT_LE(picture.cols, 1920) << sensor;
        EXPECT_LE(picture.rows, 1200) << sensor;
    }
}

TEST(ContactSheet, ShowsFewWindowsLarger) {
    ContactSheet one{{346, 260}};
    ContactSheet many{{346, 260}};
    const Events events{{100, 100, 1, 0}};
    one.add(events, {}, "");
    many.add(events, {}, "");
    for (int i = 0; i < 11; ++i) {
        many.add(Events{}, {}, "");
    }

    EXPECT_GT(countOf(one.compose(), kOnColour), countOf(many.compose(), kOnColour) + 10);
}

TEST(ContactSheet, KeepsASingleEventOfALargeSensorVisible) {
    ContactSheet sheet{{1280, 720}};
    for (int i = 0; i < 12; ++i) {
        sheet.add(Events{}, {}, "");
    }
    const int in_legend = countOf(sheet.compose(), kOffColour);
    sheet.add(Events{{777, 333, 0, 0}}, {}, "");

    EXPECT_EQ(countOf(sheet.compose(), kOffColour), in_legend + 4);
}

TEST(ContactSheet, DrawsClustersAndCaptionsCrisplyAtTheSizeOfTheThumbnail) {
    ContactSheet bare{{1280, 720}};
    ContactSheet full{{1280, 720}};
    for (int i = 0; i < 12; ++i) {
        bare.add(Events{}, {}, "");
        full.add(Events{}, {{{640.0F, 360.0F, 128.0F, 72.0F, 0ULL}}, {}, {}},
                 "0.000 - 0.010 s, 1 cluster");
    }
    const int boxes = countOf(full.compose(), kBoxColour) - countOf(bare.compose(), kBoxColour);
    const int text = countOfText(full.compose()) - countOfText(bare.compose());

    // Tiles are 474 pixels wide: an outline of 1 pixel around 48 by 27 of them, or of whole pixels
    // more by rounding.
    EXPECT_NEAR(boxes, 12 * 154, 12 * 6);
    EXPECT_GT(text, 12 * 20);
}

TEST(ContactSheet, RefusesSensorsWithoutPixelsAndSheetsWithoutTiles) {
    EXPECT_THROW(ContactSheet({0, 10}), std::invalid_argument);
    EXPECT_THROW(ContactSheet({10, -3}), std::invalid_argument);
    EXPECT_THROW(ContactSheet({10, 10}, 0), std::invalid_argument);
}

}  // namespace
}  // namespace kelvora::drawing
