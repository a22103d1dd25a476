// SPDX-License-Identifier: MIT
#include "results/track_writer.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

using State = ClusterTracker::State;

const std::string kHeader =
    "track_id,first_time_us,last_time_us,windows,path_length_px,mean_speed_px_s\n";

/// A track whose box of 20 by 20 pixels begins at (x, y).
ClusterTracker::Track track(int id, State state, float x, float y, std::uint64_t time,
                            int cluster = 0) {
    return {id, state, {x, y, 20, 20, time}, 0, 0, cluster, 1, 0, false};
}

class TrackWriterTest : public testing::Test {
protected:
    void add(const std::vector<ClusterTracker::Track>& tracks) {
        WindowClusters found;
        found.tracks = tracks;
        writer.add(found);
    }

    /// The only file, which has another name until it is complete.
    std::string written() const {
        return test::contentOf(std::filesystem::directory_iterator(directory.path())->path());
    }

    test::TemporaryDirectory directory;
    TrackWriter writer{directory.file("tracks.csv")};
};

TEST_F(TrackWriterTest, WritesTheHeaderAloneWithoutTracks) {
    add({});
    writer.finish();
    EXPECT_EQ(written(), kHeader);
}

TEST_F(TrackWriterTest, SumsUpThePathOfATrackFromItsFirstWindowOn) {
    add({track(1, State::Tentative, 10, 10, 10'000)});
    add({track(1, State::Tentative, 13, 14, 20'000)});
    add({track(1, State::Confirmed, 13, 24, 30'000)});
    writer.finish();
    EXPECT_EQ(written(), kHeader + "1,10000,30000,3,15.0,750.0\n");
}

TEST_F(TrackWriterTest, LeavesOutPredictions) {
    add({track(1, State::Confirmed, 10, 10, 10'000)});
    add({track(1, State::Confirmed, 500, 10, 20'000, -1)});
    add({track(1, State::Confirmed, 30, 10, 30'000)});
    add({track(1, State::Confirmed, 500, 10, 40'000, -1)});
    writer.finish();
    EXPECT_EQ(written(), kHeader + "1,10000,30000,2,20.0,1000.0\n");
}

TEST_F(TrackWriterTest, LeavesOutTracksThatAreNeverConfirmed) {
    add({track(1, State::Tentative, 10, 10, 10'000), track(2, State::Confirmed, 50, 10, 10'000)});
    add({track(3, State::Tentative, 90, 10, 20'000)});
    writer.finish();
    EXPECT_EQ(written(), kHeader + "2,10000,10000,1,0.0,0.0\n");
}

TEST_F(TrackWriterTest, WritesRowsInTheOrderOfTheNumbers) {
    add({track(1, State::Confirmed, 10, 10, 10'000), track(2, State::Confirmed, 50, 10, 10'000),
         track(3, State::Confirmed, 90, 10, 10'000)});
    add({track(1, State::Confirmed, 10, 10, 20'000), track(3, State::Confirmed, 90, 10, 20'000)});
    add({track(1, State::Confirmed, 10, 10, 30'000)});
    writer.finish();
    EXPECT_EQ(written(), kHeader +
                             "1,10000,30000,3,0.0,0.0\n"
                             "2,10000,10000,1,0.0,0.0\n"
                             "3,10000,20000,2,0.0,0.0\n");
}

TEST_F(TrackWriterTest, WritesARowAsSoonAsNoTrackWithALowerNumberGoesOn) {
    add({track(1, State::Confirmed, 10, 10, 10'000), track(2, State::Confirmed, 50, 10, 10'000)});
    add({track(1, State::Confirmed, 10, 10, 20'000)});
    EXPECT_EQ(written(), kHeader);
    add({track(3, State::Tentative, 90, 10, 30'000)});
    EXPECT_EQ(written(), kHeader + "1,10000,20000,2,0.0,0.0\n2,10000,10000,1,0.0,0.0\n");
    writer.finish();
    EXPECT_EQ(written(), kHeader + "1,10000,20000,2,0.0,0.0\n2,10000,10000,1,0.0,0.0\n");
}

TEST_F(TrackWriterTest, KeepsTheMicrosecondsSince1970) {
    add({track(1, State::Confirmed, 10, 10, 1'615'211'683'000'000)});
    add({track(1, State::Confirmed, 11, 10, 1'615'211'683'000'001)});
    writer.finish();
    EXPECT_EQ(written(), kHeader + "1,1615211683000000,1615211683000001,2,1.0,1000000.0\n");
}

TEST(TrackWriter, ReportsAFileThatCannotBeWritten) {
    EXPECT_THROW(TrackWriter("/nowhere/tracks.csv"), std::runtime_error);
    EXPECT_THROW(TrackWriter("/dev/full"), std::runtime_error);
}

}  // namespace
}  // namespace kelvora::tool
