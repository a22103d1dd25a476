// SPDX-License-Identifier: MIT
// Runs the program in a shell, like its users.
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct Outcome {
    int status;
    std::string output;
    std::string errors;
};

class Program : public testing::Test {
protected:
    std::string path(const std::string& name) const { return directory.file(name).string(); }

    Outcome run(const std::string& arguments) const {
        const std::string command =
            std::string(KELVORA_PROGRAM) + " " + arguments + " 2>" + path("errors");
        std::FILE* const pipe = popen(command.c_str(), "r");
        EXPECT_NE(pipe, nullptr);
        Outcome outcome{};
        std::array<char, 4096> buffer{};
        while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe)) {
            outcome.output.append(buffer.data(), count);
        }
        outcome.status = WEXITSTATUS(pclose(pipe));
        outcome.errors = test::contentOf(path("errors"));
        return outcome;
    }

    /// A short scene on a small sensor.
    std::string simulate(const std::string& name, const std::string& options = "") const {
        const Outcome outcome =
            run("simulate -o " + path(name) + " --sensor 160x120 --duration 100ms " + options);
        EXPECT_EQ(outcome.status, 0) << outcome.errors;
        return path(name);
    }

private:
    test::TemporaryDirectory directory;
};

TEST_F(Program, StatesItsVersionAndTheVersionsOfItsDependencies) {
    const Outcome outcome = run("--version");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("kelvora 0."));
    EXPECT_THAT(outcome.output, HasSubstr("OpenCV"));
    EXPECT_THAT(outcome.output, HasSubstr("nanoflann 1."));
}

TEST_F(Program, ExitsWith2ForWrongUsage) {
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run("unknown").status, 2);
    EXPECT_EQ(run("cluster").status, 2);
    EXPECT_EQ(run("cluster x --window 10").status, 2);
    EXPECT_EQ(run("cluster x --window 0ms").status, 2);
    EXPECT_EQ(run("cluster x --from 2s --to 1s").status, 2);
    EXPECT_EQ(run("cluster x --cell-width 0").status, 2);
    EXPECT_EQ(run("cluster x --sensor 640").status, 2);
    EXPECT_EQ(run("cluster x --columns x,x,y,t").status, 2);
}

TEST_F(Program, ExitsWith1ForAFileThatIsMissing) {
    const Outcome outcome = run("cluster " + path("missing.raw"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("kelvora: " + path("missing.raw") + ": "));
}

TEST_F(Program, SimulatesTheSameBytesForTheSameSeed) {
    EXPECT_EQ(test::contentOf(simulate("a.raw", "--seed 3")),
              test::contentOf(simulate("b.raw", "--seed 3")));
    EXPECT_NE(test::contentOf(simulate("a.raw", "--seed 3")),
              test::contentOf(simulate("b.raw", "--seed 4")));
}

TEST_F(Program, WritesTheTruthOfASimulation) {
    simulate("scene.raw", "--truth " + path("truth.csv"));
    EXPECT_THAT(test::contentOf(path("truth.csv")),
                StartsWith("timestamp_us,id,kind,x,y,width,height"));
}

TEST_F(Program, RefusesAnInvalidScene) {
    const Outcome outcome = run("simulate -o " + path("scene.raw") + " --lights 1000");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("--lights: must be from 0 to 100, not 1000"));
}

TEST_F(Program, FindsTheSameClustersInEveryFormat) {
    const std::string from_evt3 = run("cluster " + simulate("scene.evt3.raw")).output;
    EXPECT_GT(from_evt3.size(), 1000U);
    EXPECT_EQ(run("cluster " + simulate("scene.evt2.raw")).output, from_evt3);
    EXPECT_EQ(run("cluster " + simulate("scene.txt")).output, from_evt3);
    EXPECT_EQ(run("cluster --sensor 160x120 " + simulate("scene.bin")).output, from_evt3);
    EXPECT_EQ(run("cluster --sensor 160x120 - < " + simulate("scene.bin")).status, 1);
    EXPECT_EQ(run("cluster --sensor 160x120 /dev/stdin < " + simulate("scene.bin")).output,
              from_evt3);
}

TEST_F(Program, WritesTheSameRowsToAFileAsToStandardOutput) {
    const std::string scene = simulate("scene.raw");
    EXPECT_EQ(run("cluster " + scene + " -o " + path("clusters.csv")).output, "");
    EXPECT_EQ(run("cluster " + scene + " -o -").output, test::contentOf(path("clusters.csv")));
}

TEST_F(Program, AsksForTheSensorSizeOfARecordingThatDoesNotStateIt) {
    const Outcome outcome = run("cluster " + simulate("scene.bin"));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("--sensor WIDTHxHEIGHT"));
}

TEST_F(Program, WritesTheClustersBeforeADefectAndThenReportsIt) {
    const std::string scene = simulate("scene.bin");
    const std::string all = run("cluster --sensor 160x120 " + scene).output;
    std::filesystem::resize_file(scene, std::filesystem::file_size(scene) / 32 * 16 + 5);
    const Outcome outcome = run("cluster --sensor 160x120 " + scene);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("ends in the middle of a record"));
    EXPECT_GT(outcome.output.size(), all.size() / 4);
    // The last window is incomplete, too.
    const std::string but_the_last = outcome.output.substr(0, outcome.output.size() / 2);
    EXPECT_EQ(all.substr(0, but_the_last.size()), but_the_last);
}

TEST_F(Program, CountsDroppedAndCorrectedEvents) {
    std::ofstream(path("bad.txt")) << "10 10\n"
                                   << "0.001 1 1 1\n0.002 20 1 1\n0.0015 2 2 0\n0.003 3 3 1\n";
    const Outcome outcome = run("cluster " + path("bad.txt"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("dropped 1 events off the sensor"));
    EXPECT_THAT(outcome.errors, HasSubstr("corrected 0 times out of order"));
}

TEST_F(Program, ClustersOnlyTheEventsAskedFor) {
    const std::string scene = simulate("scene.raw");
    const std::string all = run("cluster " + scene).output;
    const std::string part = run("cluster " + scene + " --to 50ms").output;
    EXPECT_LT(part.size(), all.size());
    EXPECT_NE(run("cluster " + scene + " --polarity on").output,
              run("cluster " + scene + " --polarity off").output);
    EXPECT_NE(run("cluster " + scene + " --polarity separate").output, all);
}

TEST_F(Program, DrawsAFramePerWindowAndAnOverview) {
    const Outcome outcome = run("cluster " + simulate("scene.raw") + " --frames " + path("frames") +
                                " --overview " + path("overview.png"));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(std::filesystem::exists(path("frames/frame_000001.png")));
    EXPECT_TRUE(std::filesystem::exists(path("frames/frame_000010.png")));
    EXPECT_FALSE(std::filesystem::exists(path("frames/frame_000011.png")));
    EXPECT_THAT(test::contentOf(path("overview.png")), StartsWith("\x89PNG"));
}

TEST_F(Program, ClustersByDensityTheSameInEveryRunAndWithManyJobs) {
    const std::string scene = simulate("scene.raw");
    for (const char* dim : {"2", "3"}) {
        const std::string arguments =
            "cluster --method density --dim " + std::string(dim) + " " + scene;
        const std::string one_job = run(arguments).output;
        EXPECT_GT(one_job.size(), 500U);
        EXPECT_EQ(run(arguments).output, one_job);
        EXPECT_EQ(run(arguments + " --jobs 4").output, run(arguments + " --jobs 2").output);
    }
}

TEST_F(Program, WritesTheEventsOfClustersAndThePlotOfAWindow) {
    const Outcome outcome =
        run("cluster --method density --dim 3 -o " + path("clusters.csv") +
            " --points - --plot3d " + path("plot.png") + " " + simulate("scene.raw"));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output,
                StartsWith("timestamp_us,cluster,event_time_us,x,y,polarity\n10000,0,"));
    EXPECT_THAT(test::contentOf(path("plot.png")), StartsWith("\x89PNG"));
}

TEST_F(Program, WritesTheCentroidsOfClusters) {
    const Outcome outcome =
        run("cluster --method centroid --clusters 4 -o " + path("clusters.csv") +
            " --centroids - --overview " + path("overview.png") + " " + simulate("scene.raw"));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, StartsWith("timestamp_us,cluster,x,y,time_us,size\n10000,0,"));
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 1 + 4 * 10);
    EXPECT_THAT(test::contentOf(path("overview.png")), StartsWith("\x89PNG"));
}

TEST_F(Program, ReportsWindowsWithTooFewEventsForTheClusters) {
    const Outcome outcome =
        run("cluster --method centroid --clusters 900000 " + simulate("scene.raw"));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr("because they had fewer than 900000 events: 10"));
}

TEST_F(Program, RefusesCentroidOptionsThatContradict) {
    EXPECT_EQ(run("cluster x --method centroid").status, 2);
    EXPECT_EQ(run("cluster x --method centroid --clusters 0").status, 2);
    EXPECT_EQ(run("cluster x --method centroid --clusters 2 --tol 0").status, 2);
    EXPECT_EQ(run("cluster x --method centroid --clusters 2 --max-iter 0").status, 2);
    EXPECT_EQ(run("cluster x --method centroid --clusters 2 --polarity separate").status, 2);
    EXPECT_EQ(run("cluster x --method density --centroids y").status, 2);
    EXPECT_THAT(run("cluster x --method density --centroids y").errors,
                HasSubstr("--centroids: needs --method centroid\n"));
}

TEST_F(Program, RefusesDensityOptionsThatContradict) {
    EXPECT_EQ(run("cluster x --points y").status, 2);
    EXPECT_THAT(run("cluster x --points y").errors,
                HasSubstr("--points: needs --method density or centroid\n"));
    EXPECT_EQ(run("cluster x --method density --dim 4").status, 2);
    EXPECT_EQ(run("cluster x --method density --eps 0").status, 2);
    EXPECT_EQ(run("cluster x --method density --polarity separate").status, 2);
    EXPECT_EQ(run("cluster x --method density --scale-time 1 --us-per-pixel 1").status, 2);
    EXPECT_EQ(run("cluster x --method density --dim 3 --window 3600s").status, 2);
    EXPECT_EQ(run("cluster x --method density --time-length 0ms").status, 2);
}

TEST_F(Program, FollowsObjectsFromWindowToWindow) {
    const std::string scene = simulate("scene.raw");
    const Outcome outcome = run("cluster --track " + scene + " --tracks " + path("tracks.csv") +
                                " --overview " + path("overview.png"));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(
        outcome.output,
        StartsWith(
            "timestamp_us,x,y,width,height,start_time_us,duration_us,events,track_id,vx,vy,state\n"
            "10000,"));
    EXPECT_THAT(outcome.output, HasSubstr(",1,0.0,0.0,tentative\n"));
    EXPECT_THAT(outcome.output, HasSubstr(",confirmed\n"));
    EXPECT_THAT(test::contentOf(path("tracks.csv")),
                StartsWith("track_id,first_time_us,last_time_us,windows,path_length_px,"
                           "mean_speed_px_s\n1,10000,"));
    EXPECT_THAT(test::contentOf(path("overview.png")), StartsWith("\x89PNG"));
}

TEST_F(Program, FindsTheSameClustersWithTracksAsWithout) {
    const std::string scene = simulate("scene.raw");
    std::istringstream rows(run("cluster " + scene).output);
    std::istringstream tracked_rows(run("cluster --track " + scene).output);
    std::string row;
    std::string tracked_row;
    while (std::getline(tracked_rows, tracked_row)) {
        if (tracked_row.find("hidden") == std::string::npos) {
            ASSERT_TRUE(std::getline(rows, row));
            EXPECT_THAT(tracked_row, StartsWith(row + ','));
        }
    }
    EXPECT_FALSE(std::getline(rows, row));
}

TEST_F(Program, NumbersTheFramesOfTheChallengeFromTheFirstEventsOn) {
    // A square of events in windows 101 to 103, and again in window 106. Boxes extend to the end of
    // the cell after the last active one.
    std::ofstream recording(path("square.txt"));
    recording << "64 64\n";
    for (const int window : {101, 102, 103, 106}) {
        for (int pixel = 0; pixel < 400; ++pixel) {
            recording << fmt::format("{:.6f} {} {} 1\n", 0.01 * window + 1e-6 * pixel,
                                     20 + pixel % 20, 20 + pixel / 20);
        }
    }
    recording.close();
    EXPECT_EQ(run("cluster --track --format mot --min-hits 1 " + path("square.txt")).output,
              "1,1,21.00,21.00,25.00,25.00,1,-1,-1,-1\n"
              "2,1,21.00,21.00,25.00,25.00,1,-1,-1,-1\n"
              "3,1,21.00,21.00,25.00,25.00,1,-1,-1,-1\n"
              "6,1,21.00,21.00,25.00,25.00,1,-1,-1,-1\n");
}

TEST_F(Program, RefusesTrackOptionsThatContradict) {
    EXPECT_EQ(run("cluster x --tracks y").status, 2);
    EXPECT_EQ(run("cluster x --format mot").status, 2);
    EXPECT_EQ(run("cluster x --max-missed 3").status, 2);
    EXPECT_EQ(run("cluster x --track --min-hits 0").status, 2);
    EXPECT_EQ(run("cluster x --track --max-missed -1").status, 2);
    EXPECT_EQ(run("cluster x --track --max-distance -1").status, 2);
    EXPECT_EQ(run("cluster x --track --max-size-change inf").status, 2);
    EXPECT_THAT(run("cluster x --format mot").errors, HasSubstr("needs --track"));
}

TEST_F(Program, RefusesOptionsThatTheMethodDoesNotUse) {
    EXPECT_THAT(run("cluster x --eps 3").errors,
                HasSubstr("--eps: is not used with --method grid"));
    EXPECT_EQ(run("cluster x --eps 3").status, 2);
    EXPECT_EQ(run("cluster x --method density --cell-width 3").status, 2);
    EXPECT_EQ(run("cluster x --method density --us-per-pixel 3").status, 2);
    EXPECT_EQ(run("cluster x --min-cluster-size 30 --max-cluster-size 20").status, 2);
}

TEST_F(Program, RefusesPicturesOfOtherFormats) {
    EXPECT_EQ(run("cluster x --overview a.jpg").status, 2);
    EXPECT_EQ(run("cluster x --plot3d a").status, 2);
}

TEST_F(Program, SuggestsASimilarWord) {
    EXPECT_EQ(run("clutser x").errors,
              "kelvora: 'clutser' is not a command; did you mean cluster?\n");
    EXPECT_EQ(run("--versoin").errors,
              "kelvora: '--versoin' is not an option; did you mean --version?\n");
    EXPECT_EQ(run("cluster x --widnow 10ms").errors,
              "kelvora: '--widnow' is not an option; did you mean --window?\n");
    EXPECT_THAT(run("cluster x --method dbscan").errors, HasSubstr("; did you mean density?"));
}

TEST_F(Program, SaysThatARangeIsAfterTheEnd) {
    const Outcome outcome = run("cluster --from 5s " + simulate("scene.raw"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("the recording ends before the requested time range"));
}

TEST_F(Program, SummarisesARecording) {
    const std::string scene = simulate("scene.raw");
    EXPECT_THAT(run("info " + scene).output, HasSubstr("sensor         160 x 120 pixels"));
    EXPECT_THAT(run("info --json " + scene).output, HasSubstr("\"format\": \"evt3\""));
}

TEST_F(Program, PrintsNothingIfQuiet) {
    EXPECT_EQ(run("cluster --quiet " + simulate("scene.raw")).errors, "");
}

TEST_F(Program, ExitsWith130AfterCtrlCOnceTheCurrentRowIsWritten) {
    const std::string scene = path("long.bin");
    ASSERT_EQ(run("simulate -o " + scene + " --sensor 64x48 --duration 4s").status, 0);
    const std::string command = "cluster --quiet --sensor 64x48 --window 1ms " + scene;
    const std::string all_rows = run(command).output;
    // The pipe is too small for all rows: the program waits until the others are read.
    const std::string pipe = path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ASSERT_GT(all_rows.size(), 2 * 65536U);
    const Outcome outcome =
        run(command + " >" + pipe + " & { read -r row; kill -INT $!; echo \"$row\"; cat; } <" +
            pipe + "; wait $!");
    EXPECT_EQ(outcome.status, 130);
    EXPECT_LT(outcome.output.size(), all_rows.size());
    EXPECT_THAT(all_rows, StartsWith(outcome.output));
    EXPECT_EQ(outcome.output.back(), '\n');
}

}  // namespace
}  // namespace kelvora::tool
