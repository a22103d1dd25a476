// SPDX-License-Identifier: MIT
#include "results/result_files.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "sessions/session.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

constexpr std::uint64_t kWindow = 10'000;

/// Reports a box of 20 by 20 pixels at each event of polarity 1.
class BoxPerEvent : public ClusteringMethod {
public:
    void cluster(const recording::Window& window, WindowClusters& found) override {
        found.clusters.clear();
        for (const Event2D& event : window) {
            if (event.polarity == 1) {
                found.clusters.emplace_back(event.x, event.y, 20.0F, 20.0F, window.end_time);
            }
        }
    }
};

class ResultFilesTest : public testing::Test {
protected:
    ResultFilesTest() {
        output.clusters = directory.file("clusters.txt");
        output.format = ClusterFormat::Mot;
        settings.windows.window = Duration{kWindow};
        settings.track.is_wanted = true;
        settings.track.min_hits = 1;
        settings.track.max_missed = 3;
    }

    /// Processes windows with one box each, and returns the output.
    std::string run(const std::vector<std::uint64_t>& windows, std::uint64_t first_window = 7) {
        Session session(std::make_unique<BoxPerEvent>(), settings);
        ResultFiles files(output, settings.track.is_wanted, {640, 480});
        recording::WindowSlicer slicer(kWindow);
        for (const std::uint64_t window : windows) {
            slicer.add({Event2D(99, 49, 1, (first_window + window) * kWindow + 5)});
        }
        slicer.finish();
        recording::Window window;
        while (slicer.next(window)) {
            files.write(window, session.cluster(window));
        }
        files.finish();
        files.close();
        window_count = session.windowCount();
        cluster_count = session.clusterCount();
        return test::contentOf(output.clusters);
    }

    static std::string row(int frame, int id) {
        return std::to_string(frame) + ',' + std::to_string(id) +
               ",100.00,50.00,20.00,20.00,1,-1,-1,-1\n";
    }

    test::TemporaryDirectory directory;
    OutputSettings output;
    Settings settings;
    std::uint64_t window_count = 0;
    std::uint64_t cluster_count = 0;
};

TEST_F(ResultFilesTest, NumbersWindowsFromTheFirstWithEventsAndCountsThoseWithout) {
    EXPECT_EQ(run({0, 1, 4}), row(1, 1) + row(2, 1) + row(5, 1));
    EXPECT_EQ(window_count, 3U);
    EXPECT_EQ(cluster_count, 3U);
}

TEST_F(ResultFilesTest, NumbersWindowsTheSameWhereverTheRecordingBegins) {
    EXPECT_EQ(run({0, 2}, 0), row(1, 1) + row(3, 1));
    EXPECT_EQ(run({0, 2}, 161'521'168'300), row(1, 1) + row(3, 1));
}

TEST_F(ResultFilesTest, EndsTracksInWindowsWithoutEvents) {
    EXPECT_EQ(run({0, 4}), row(1, 1) + row(5, 1));
    EXPECT_EQ(run({0, 5}), row(1, 1) + row(6, 2));
}

TEST_F(ResultFilesTest, CountsWindowsWithoutEventsBetweenAllPairsOfWindows) {
    EXPECT_EQ(run({0, 4, 8, 13, 14}), row(1, 1) + row(5, 1) + row(9, 1) + row(14, 2) + row(15, 2));
}

// Going through all windows without events would take years.
TEST_F(ResultFilesTest, SkipsGapsOfAnyLength) {
    EXPECT_EQ(run({0, 100'000'000'000}),
              row(1, 1) + "100000000001,2,100.00,50.00,20.00,20.00,1,-1,-1,-1\n");
}

TEST_F(ResultFilesTest, WritesTheTracksAtTheEnd) {
    output.tracks = directory.file("tracks.csv");
    run({0, 1, 2, 10, 11});
    EXPECT_EQ(test::contentOf(output.tracks),
              "track_id,first_time_us,last_time_us,windows,path_length_px,mean_speed_px_s\n"
              "1,80000,100000,3,0.0,0.0\n"
              "2,180000,190000,2,0.0,0.0\n");
}

TEST_F(ResultFilesTest, FollowsNothingUnlessRequested) {
    settings.track.is_wanted = false;
    output.format = ClusterFormat::Csv;
    EXPECT_EQ(run({0}),
              "timestamp_us,x,y,width,height,start_time_us,duration_us,events\n80000,99,49,20,20,-"
              "1,0,-1\n");
}

}  // namespace
}  // namespace kelvora::tool
