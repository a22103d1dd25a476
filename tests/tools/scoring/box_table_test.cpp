// SPDX-License-Identifier: MIT
#include "scoring/box_table.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kelvora/recording/recording_error.hpp"
#include "tools/scoring/table_file.hpp"

namespace kelvora::scoring {
namespace {

using testing::HasSubstr;

std::vector<TruthBox> truthOf(const std::string& content) {
    return readTruth(TableFile(content).path());
}

ClusterTable clustersOf(const std::string& content, bool with_tentative = false) {
    return readClusters(TableFile(content).path(), with_tentative);
}

std::string errorOfTruth(const std::string& content) {
    try {
        truthOf(content);
    } catch (const recording::RecordingError& error) {
        return error.what();
    }
    return "";
}

std::string errorOfClusters(const std::string& content) {
    try {
        clustersOf(content);
    } catch (const recording::RecordingError& error) {
        return error.what();
    }
    return "";
}

void expectBox(const Box& box, double x, double y, double width, double height) {
    EXPECT_EQ(box.x, x);
    EXPECT_EQ(box.y, y);
    EXPECT_EQ(box.width, width);
    EXPECT_EQ(box.height, height);
}

TEST(BoxTable, ReadsTheTruth) {
    const auto rows = truthOf(
        "timestamp_us,id,kind,x,y,width,height,visibility,moving,speed_px_s\n"
        "10000,1,light,457.68,158.68,21.33,22.50,1.000,0,0.0\n"
        "10000,2,disc,89.45,382.05,79.48,77.78,0.250,1,240.0\n");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].timestamp_us, 10'000U);
    EXPECT_EQ(rows[0].id, 1);
    expectBox(rows[0].box, 457.68, 158.68, 21.33, 22.5);
    EXPECT_EQ(rows[0].visibility, 1.0);
    EXPECT_FALSE(rows[0].is_moving);
    EXPECT_EQ(rows[1].visibility, 0.25);
    EXPECT_TRUE(rows[1].is_moving);
}

TEST(BoxTable, TreatsObjectsAsMovingAndVisibleByDefault) {
    const auto rows = truthOf("id,height,width,y,x,timestamp_us\n-3,1,2,3,4,5\n");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].timestamp_us, 5U);
    EXPECT_EQ(rows[0].id, -3);
    expectBox(rows[0].box, 4, 3, 2, 1);
    EXPECT_EQ(rows[0].visibility, 1.0);
    EXPECT_TRUE(rows[0].is_moving);
}

TEST(BoxTable, ReadsClustersWithoutTracks) {
    const ClusterTable table = clustersOf(
        "timestamp_us,x,y,width,height,start_time_us,duration_us\n10000,315,45.5,50,60,-1,0\n"
        "10000,315,45.5,50,60,-1,0\n");
    EXPECT_FALSE(table.has_tracks);
    ASSERT_EQ(table.clusters.size(), 2U);
    EXPECT_EQ(table.clusters[0].timestamp_us, 10'000U);
    EXPECT_EQ(table.clusters[0].track, 0U);
    expectBox(table.clusters[0].box, 315, 45.5, 50, 60);
}

TEST(BoxTable, LeavesOutTentativeTracksUnlessTheyAreRequested) {
    const std::string content =
        "timestamp_us,x,y,width,height,start_time_us,duration_us,track_id,vx,vy,state\n"
        "10000,1,2,3,4,-1,0,7,0,0,confirmed\n"
        "10000,1,2,3,4,-1,0,8,0,0,tentative\n";
    const ClusterTable confirmed = clustersOf(content);
    EXPECT_TRUE(confirmed.has_tracks);
    ASSERT_EQ(confirmed.clusters.size(), 1U);
    EXPECT_EQ(confirmed.clusters[0].track, 7U);
    EXPECT_EQ(confirmed.tentative, 1U);
    const ClusterTable all = clustersOf(content, true);
    ASSERT_EQ(all.clusters.size(), 2U);
    EXPECT_EQ(all.clusters[1].track, 8U);
    EXPECT_EQ(all.tentative, 0U);
}

TEST(BoxTable, IncludesHiddenTracksAndLeavesOutClustersWithoutTrack) {
    const std::string content =
        "timestamp_us,x,y,width,height,track_id,state\n"
        "10000,1,2,3,4,0,none\n"
        "10000,1,2,3,4,0,none\n"
        "10000,5,2,3,4,7,hidden\n";
    for (const bool with_tentative : {false, true}) {
        const ClusterTable table = clustersOf(content, with_tentative);
        ASSERT_EQ(table.clusters.size(), 1U);
        EXPECT_EQ(table.clusters[0].track, 7U);
        EXPECT_EQ(table.untracked, 2U);
        EXPECT_EQ(table.tentative, 0U);
    }
}

TEST(BoxTable, ReadsClustersFromJsonLines) {
    const ClusterTable table = clustersOf(
        "{\"timestamp_us\":10000,\"x\":1.5,\"y\":2.0,\"width\":30.0,\"height\":40.0,"
        "\"start_time_us\":-1,\"duration_us\":0,\"track_id\":3,\"state\":\"confirmed\"}\n");
    EXPECT_TRUE(table.has_tracks);
    ASSERT_EQ(table.clusters.size(), 1U);
    EXPECT_EQ(table.clusters[0].track, 3U);
    expectBox(table.clusters[0].box, 1.5, 2, 30, 40);
}

TEST(BoxTable, RefusesInvalidValues) {
    const std::string header = "timestamp_us,id,x,y,width,height,visibility,moving\n";
    EXPECT_EQ(errorOfTruth(header + "1,1,0,0,9,9,0.5,1\n"), "");
    EXPECT_THAT(errorOfTruth(header + "-1,1,0,0,9,9,0.5,1\n"), HasSubstr("timestamp_us = '-1'"));
    EXPECT_THAT(errorOfTruth(header + "1,1.5,0,0,9,9,0.5,1\n"), HasSubstr("id = '1.5'"));
    EXPECT_THAT(errorOfTruth(header + "1,1,0,0,-9,9,0.5,1\n"), HasSubstr("width = '-9'"));
    EXPECT_THAT(errorOfTruth(header + "1,1,0,0,9,nan,0.5,1\n"), HasSubstr("height = 'nan'"));
    EXPECT_THAT(errorOfTruth(header + "1,1,0,0,9,9,1.5,1\n"), HasSubstr("visibility = '1.5'"));
    EXPECT_THAT(errorOfTruth(header + "1,1,0,0,9,9,0.5,yes\n"),
                HasSubstr("has moving = 'yes', which is not 0 or 1, line 2, correct the line"));
}

TEST(BoxTable, RefusesInvalidTracksAndStates) {
    const std::string header = "timestamp_us,x,y,width,height,track_id,state\n";
    EXPECT_EQ(errorOfClusters(header + "1,0,0,9,9,1,confirmed\n"), "");
    EXPECT_THAT(errorOfClusters(header + "1,0,0,9,9,0,confirmed\n"), HasSubstr("track_id = '0'"));
    EXPECT_THAT(errorOfClusters(header + "1,0,0,9,9,,confirmed\n"), HasSubstr("track_id = ''"));
    EXPECT_THAT(errorOfClusters(header + "1,0,0,9,9,1,lost\n"),
                HasSubstr("which is not confirmed, hidden, tentative or none, line 2"));
}

TEST(BoxTable, RefusesAnObjectOrATrackTwiceAtTheSameTime) {
    EXPECT_THAT(errorOfTruth("timestamp_us,id,x,y,width,height\n"
                             "10,1,0,0,9,9\n20,1,0,0,9,9\n10,1,5,5,9,9\n"),
                HasSubstr("has object 1 twice at 10 us, line 4, give one row per time to each"));
    EXPECT_THAT(errorOfClusters("timestamp_us,x,y,width,height,track_id\n"
                                "10,0,0,9,9,3\n10,5,5,9,9,3\n"),
                HasSubstr("has track 3 twice at 10 us, line 3"));
}

}  // namespace
}  // namespace kelvora::scoring
