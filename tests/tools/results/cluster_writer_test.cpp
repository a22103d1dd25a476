// SPDX-License-Identifier: MIT
#include "results/cluster_writer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

std::string written(ClusterFormat format, bool with_tracks,
                    const std::vector<WindowClusters>& windows) {
    const test::TemporaryDirectory directory;
    const auto path = directory.file("clusters");
    {
        ClusterWriter writer(path, format, with_tracks);
        for (const WindowClusters& window : windows) {
            writer.write(window);
        }
        writer.close();
    }
    return test::contentOf(path);
}

std::string written(ClusterFormat format, const std::vector<ClusterGeometry>& clusters,
                    const ClusterExtent& extent = {-1, 0, 25}) {
    WindowClusters found;
    found.clusters = clusters;
    found.extents.assign(clusters.size(), extent);
    return written(format, false, {found});
}

ClusterTracker::Track track(int id, ClusterTracker::State state, int cluster,
                            const ClusterGeometry& box) {
    const bool is_hidden = cluster < 0;
    return {id, state, box, 12.34F, -5.06F, cluster, 7, 0, is_hidden};
}

/// Clusters without a track, of a confirmed and of a tentative track, a hidden object, and a lost
/// one.
WindowClusters tracked(std::uint64_t number) {
    WindowClusters found;
    found.number = number;
    for (const float x : {10.0F, 20.5F, 30.0F}) {
        found.clusters.emplace_back(x, 2.0F, 3.0F, 4.0F, 5000ULL);
    }
    found.extents.assign(3, {-1, 0, 25});
    const ClusterGeometry predicted(60.25F, 2.0F, 3.0F, 4.0F, 5000ULL);
    found.tracks = {track(2, ClusterTracker::State::Confirmed, -1, predicted),
                    track(4, ClusterTracker::State::Confirmed, 1, found.clusters[1]),
                    track(6, ClusterTracker::State::Confirmed, -1, predicted),
                    track(9, ClusterTracker::State::Tentative, 2, found.clusters[2])};
    found.tracks[2].is_hidden = false;
    return found;
}

const ClusterGeometry kCluster(1.5F, 2.0F, 30.0F, 40.0F, 1'615'211'683'000'000U);

TEST(ClusterWriter, WritesAHeaderAndOneCsvRowPerCluster) {
    EXPECT_EQ(written(ClusterFormat::Csv, {kCluster, kCluster}),
              "timestamp_us,x,y,width,height,start_time_us,duration_us,events\n"
              "1615211683000000,1.5,2,30,40,-1,0,25\n"
              "1615211683000000,1.5,2,30,40,-1,0,25\n");
}

TEST(ClusterWriter, WritesOneJsonObjectPerLine) {
    EXPECT_EQ(written(ClusterFormat::JsonLines, {kCluster}),
              "{\"timestamp_us\":1615211683000000,\"x\":1.5,\"y\":2.0,\"width\":30.0,"
              "\"height\":40.0,\"start_time_us\":-1,\"duration_us\":0,\"events\":25}\n");
}

TEST(ClusterWriter, WritesTheTimesOfTheEvents) {
    const ClusterGeometry timed(cv::Rect_<float>(1.0F, 2.0F, 3.0F, 4.0F), 5, 6, 7);
    EXPECT_EQ(written(ClusterFormat::Csv, {timed}, {1'615'211'683'000'005, 8, 9}),
              "timestamp_us,x,y,width,height,start_time_us,duration_us,events\n"
              "7,1,2,3,4,1615211683000005,8,9\n");
}

TEST(ClusterWriter, WithoutClustersWritesTheCsvHeaderOnly) {
    EXPECT_EQ(written(ClusterFormat::Csv, {}),
              "timestamp_us,x,y,width,height,start_time_us,duration_us,events\n");
    EXPECT_EQ(written(ClusterFormat::JsonLines, {}), "");
}

TEST(ClusterWriter, AddsTheTracksOfClustersAndThenTheHiddenOnes) {
    EXPECT_EQ(
        written(ClusterFormat::Csv, true, {tracked(1)}),
        "timestamp_us,x,y,width,height,start_time_us,duration_us,events,track_id,vx,vy,state\n"
        "5000,10,2,3,4,-1,0,25,0,0.0,0.0,none\n"
        "5000,20.5,2,3,4,-1,0,25,4,12.3,-5.1,confirmed\n"
        "5000,30,2,3,4,-1,0,25,9,12.3,-5.1,tentative\n"
        "5000,60.25,2,3,4,-1,0,0,2,12.3,-5.1,hidden\n");
}

TEST(ClusterWriter, AddsTheTracksToJsonObjects) {
    std::istringstream lines(written(ClusterFormat::JsonLines, true, {tracked(1)}));
    std::vector<nlohmann::json> objects;
    for (std::string line; std::getline(lines, line);) {
        objects.push_back(nlohmann::json::parse(line));
    }
    ASSERT_EQ(objects.size(), 4U);
    EXPECT_EQ(objects[0]["track_id"], 0);
    EXPECT_EQ(objects[0]["state"], "none");
    EXPECT_EQ(objects[1]["track_id"], 4);
    EXPECT_EQ(objects[1]["vx"], 12.34F);
    EXPECT_EQ(objects[1]["vy"], -5.06F);
    EXPECT_EQ(objects[1]["state"], "confirmed");
    EXPECT_EQ(objects[2]["state"], "tentative");
    EXPECT_EQ(objects[3]["state"], "hidden");
    EXPECT_EQ(objects[3]["x"], 60.25F);
}

TEST(ClusterWriter, WritesConfirmedTracksAloneForTheChallengeWithPixelsFrom1) {
    EXPECT_EQ(written(ClusterFormat::Mot, true, {tracked(1), tracked(12)}),
              "1,4,21.50,3.00,3.00,4.00,1,-1,-1,-1\n"
              "1,2,61.25,3.00,3.00,4.00,1,-1,-1,-1\n"
              "12,4,21.50,3.00,3.00,4.00,1,-1,-1,-1\n"
              "12,2,61.25,3.00,3.00,4.00,1,-1,-1,-1\n");
}

TEST(ClusterWriter, WritesNoTrackColumnsUnlessRequested) {
    WindowClusters found = tracked(1);
    found.tracks.clear();
    EXPECT_EQ(written(ClusterFormat::Csv, false, {found}),
              "timestamp_us,x,y,width,height,start_time_us,duration_us,events\n"
              "5000,10,2,3,4,-1,0,25\n"
              "5000,20.5,2,3,4,-1,0,25\n"
              "5000,30,2,3,4,-1,0,25\n");
    EXPECT_EQ(
        written(ClusterFormat::Csv, true, {}),
        "timestamp_us,x,y,width,height,start_time_us,duration_us,events,track_id,vx,vy,state\n");
}

TEST(ClusterWriter, ReportsAFileThatCannotBeWritten) {
    EXPECT_THROW(ClusterWriter("/nowhere/clusters.csv", ClusterFormat::Csv, false),
                 std::runtime_error);
    EXPECT_THROW(ClusterWriter("/dev/full", ClusterFormat::Csv, false), std::runtime_error);
}

}  // namespace
}  // namespace kelvora::tool
