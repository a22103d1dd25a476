// SPDX-License-Identifier: MIT
#include "command_line/score_command.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "kelvora/recording/recording_error.hpp"
#include "tools/scoring/table_file.hpp"

namespace kelvora::tool {
namespace {

using scoring::TableFile;
using testing::HasSubstr;

const std::string kTruth =
    "timestamp_us,id,kind,x,y,width,height,visibility,moving,speed_px_s\n"
    "10000,1,disc,0,0,10,10,1.000,1,200.0\n"
    "10000,2,light,100,0,10,10,1.000,0,0.0\n"
    "20000,1,disc,2,0,10,10,0.500,1,200.0\n"
    "30000,1,disc,4,0,10,10,1.000,1,200.0\n";

const std::string kClusters =
    "timestamp_us,x,y,width,height,start_time_us,duration_us\n"
    "10000,0,0,10,10,-1,0\n"
    "10000,100,0,10,10,-1,0\n"
    "20000,4,0,10,10,-1,0\n"
    "20000,50,0,10,10,-1,0\n"
    "40000,50,0,10,10,-1,0\n";

const std::string kTracks =
    "timestamp_us,x,y,width,height,start_time_us,duration_us,track_id,vx,vy,state\n"
    "10000,0,0,10,10,-1,0,1,0,0,tentative\n"
    "20000,2,0,10,10,-1,0,1,0,0,confirmed\n"
    "30000,4,0,10,10,-1,0,2,0,0,confirmed\n";

struct Outcome {
    std::string output;
    std::string errors;
};

Outcome run(const std::string& truth, const std::string& clusters, const std::string& options) {
    const TableFile truth_file(truth);
    const TableFile clusters_file(clusters);
    CLI::App program;
    const ScoreCommand command(program);
    program.parse("score --truth " + truth_file.path().string() + " --clusters " +
                  clusters_file.path().string() + " " + options);
    EXPECT_TRUE(command.isChosen());
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    std::exception_ptr error;
    try {
        EXPECT_EQ(command.run(), 0);
    } catch (const std::exception&) {
        error = std::current_exception();
    }
    Outcome outcome = {testing::internal::GetCapturedStdout(),
                       testing::internal::GetCapturedStderr()};
    if (error) {
        std::rethrow_exception(error);
    }
    return outcome;
}

nlohmann::json jsonOf(const std::string& truth, const std::string& clusters,
                      const std::string& options = "") {
    return nlohmann::json::parse(run(truth, clusters, "--json - " + options).output);
}

TEST(ScoreCommand, PrintsATableOfClustersWithoutTracks) {
    const Outcome outcome = run(kTruth, kClusters, "");
    EXPECT_EQ(outcome.output,
              "frames             3\n"
              "objects            3 (1 more ignored)\n"
              "clusters           4 (1 of them on ignored objects)\n"
              "matches            2 (IoU of 0.5 or more)\n"
              "misses             1\n"
              "false positives    1\n"
              "precision          0.6667\n"
              "recall             0.6667\n"
              "MOTA               0.3333 (MODA: without track_id, switches do not count)\n"
              "MOTP               0.8333 (mean IoU of matches)\n"
              "switches           -\n"
              "switches per 10 s  -\n"
              "fragmentations     -\n"
              "trajectories       1\n"
              "mostly tracked     0 (80 % of their frames or more)\n"
              "partially tracked  1\n"
              "mostly lost        0 (less than 20 %)\n"
              "left out           0 tentative, 0 without track, 1 outside the time of the truth\n");
    EXPECT_EQ(outcome.errors, "");
}

TEST(ScoreCommand, PrintsNullForMeasuresThatNeedTracks) {
    const nlohmann::json json = jsonOf(kTruth, kClusters);
    EXPECT_EQ(json["matches"], 2);
    EXPECT_EQ(json["has_tracks"], false);
    EXPECT_TRUE(json.at("switches").is_null());
    EXPECT_TRUE(json.at("switches_per_10_s").is_null());
    EXPECT_TRUE(json.at("fragmentations").is_null());
    EXPECT_DOUBLE_EQ(json["mota"].get<double>(), 1.0 - 2.0 / 3.0);
}

TEST(ScoreCommand, ScoresConfirmedTracksOnlyUnlessAskedTo) {
    const nlohmann::json confirmed = jsonOf(kTruth, kTracks);
    EXPECT_EQ(confirmed["matches"], 2);
    EXPECT_EQ(confirmed["switches"], 1);
    EXPECT_EQ(confirmed["tentative_left_out"], 1);
    const nlohmann::json all = jsonOf(kTruth, kTracks, "--tentative");
    EXPECT_EQ(all["matches"], 3);
    EXPECT_EQ(all["switches"], 1);
    EXPECT_EQ(all["fragmentations"], 0);
    EXPECT_EQ(all["tentative_left_out"], 0);
    // One switch in three frames of 10 ms.
    EXPECT_NEAR(all["switches_per_10_s"].get<double>(), 1.0 / 0.003, 1e-9);
}

TEST(ScoreCommand, MatchesAtTheOverlapAskedFor) {
    EXPECT_EQ(jsonOf(kTruth, kClusters, "--min-iou 0.7")["matches"], 1);
    EXPECT_EQ(jsonOf(kTruth, kClusters, "--min-iou 0.7")["min_iou"], 0.7);
}

TEST(ScoreCommand, CountsStillAndHiddenObjectsAsAskedFor) {
    EXPECT_EQ(jsonOf(kTruth, kClusters, "--include-still")["matches"], 3);
    EXPECT_EQ(jsonOf(kTruth, kClusters, "--min-visibility 0.6")["objects"], 2);
}

TEST(ScoreCommand, WritesJsonToAFileNextToTheTable) {
    const TableFile json("");
    const Outcome outcome = run(kTruth, kClusters, "--json " + json.path().string());
    EXPECT_THAT(outcome.output, testing::StartsWith("frames  "));
    EXPECT_EQ(nlohmann::json::parse(std::ifstream(json.path())), jsonOf(kTruth, kClusters));
}

TEST(ScoreCommand, ScoresFilesWithoutRows) {
    const std::string no_clusters = kClusters.substr(0, kClusters.find('\n') + 1);
    const nlohmann::json nothing_found = jsonOf(kTruth, no_clusters);
    EXPECT_EQ(nothing_found["misses"], 3);
    EXPECT_TRUE(nothing_found.at("precision").is_null());
    const nlohmann::json no_truth = jsonOf(kTruth.substr(0, kTruth.find('\n') + 1), kClusters);
    EXPECT_EQ(no_truth["outside_truth"], 5);
    EXPECT_TRUE(no_truth.at("mota").is_null());
}

TEST(ScoreCommand, RefusesClustersAtOtherTimesThanTheTruth) {
    try {
        run(kTruth, "timestamp_us,x,y,width,height\n15000,0,0,10,10\n", "");
        FAIL();
    } catch (const recording::RecordingError& error) {
        EXPECT_THAT(error.what(), HasSubstr("has no row at any of the times of "));
        EXPECT_THAT(error.what(), HasSubstr("--truth-interval"));
    }
}

TEST(ScoreCommand, WarnsOfClustersAtOtherIntervalsThanTheTruth) {
    const Outcome outcome =
        run(kTruth, "timestamp_us,x,y,width,height\n10000,0,0,10,10\n15000,0,0,10,10\n", "");
    EXPECT_THAT(outcome.errors, HasSubstr("every 10000 us, but the clusters every 5000 us"));
}

TEST(ScoreCommand, RefusesOptionsOutOfRange) {
    EXPECT_THROW(run(kTruth, kClusters, "--min-iou 0"), CLI::ParseError);
    EXPECT_THROW(run(kTruth, kClusters, "--min-iou 1.1"), CLI::ParseError);
    EXPECT_THROW(run(kTruth, kClusters, "--min-iou nan"), CLI::ParseError);
    EXPECT_THROW(run(kTruth, kClusters, "--min-visibility 2"), CLI::ParseError);
    CLI::App program;
    const ScoreCommand command(program);
    EXPECT_THROW(program.parse("score --truth t.csv"), CLI::ParseError);
}

}  // namespace
}  // namespace kelvora::tool
