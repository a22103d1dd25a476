// SPDX-License-Identifier: MIT
#include "command_line/track_options.hpp"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <string>

namespace kelvora::tool {
namespace {

TrackOptions parsed(const std::string& arguments) {
    CLI::App program;
    TrackOptions options;
    declareOptions(program, options);
    program.parse(arguments);
    return options;
}

TEST(TrackOptions, WantNoTracksAndThoseOfTheLibraryByDefault) {
    EXPECT_FALSE(parsed("").is_wanted);
    const TrackOptions options = parsed("--track");
    EXPECT_TRUE(options.is_wanted);
    EXPECT_EQ(options.max_distance, ClusterTracker::kDefaultMaxDistance);
    EXPECT_EQ(options.max_size_change, ClusterTracker::kDefaultMaxSizeChange);
    EXPECT_EQ(options.max_missed, ClusterTracker::kDefaultMaxMissed);
    EXPECT_EQ(options.min_hits, ClusterTracker::kDefaultMinHits);
}

TEST(TrackOptions, TakeEachParameter) {
    const TrackOptions options =
        parsed("--track --max-distance 2.5 --max-size-change 0 --max-missed 0 --min-hits 1");
    EXPECT_EQ(options.max_distance, 2.5F);
    EXPECT_EQ(options.max_size_change, 0);
    EXPECT_EQ(options.max_missed, 0);
    EXPECT_EQ(options.min_hits, 1);
}

TEST(TrackOptions, MakeATrackerOfTheirParameters) {
    const ClusterGeometry box(10, 10, 20, 20, 0);
    ClusterTracker tracker =
        parsed("--track --max-distance 2 --max-size-change 1 --max-missed 2 --min-hits 1")
            .makeTracker();
    tracker.update({box});
    EXPECT_EQ(tracker.getTracks().front().state, ClusterTracker::State::Confirmed);
    tracker.update({});
    tracker.update({});
    EXPECT_EQ(tracker.getTracks().size(), 1U);
    EXPECT_EQ(tracker.update({{12, 10, 20, 20, 0}}).front(), 1);
    EXPECT_EQ(tracker.update({{38, 10, 20, 20, 0}}).front(), 2);
    tracker.reset();
    EXPECT_EQ(tracker.update({{10, 10, 10, 10, 0}}).front(), 3);
    EXPECT_EQ(tracker.update({{9, 9, 14, 14, 0}}).front(), 0);
}

TEST(TrackOptions, RefuseParametersWithoutTracks) {
    for (const char* name : {"--max-distance", "--max-size-change", "--max-missed", "--min-hits"}) {
        EXPECT_THROW(parsed(std::string(name) + " 5"), CLI::RequiresError) << name;
        EXPECT_NO_THROW(parsed("--track " + std::string(name) + " 5")) << name;
    }
}

TEST(TrackOptions, RefuseParametersBelowTheirBounds) {
    for (const char* argument :
         {"--max-distance -1", "--max-distance inf", "--max-size-change -0.1", "--max-missed -1",
          "--max-missed 2.5", "--min-hits 0"}) {
        EXPECT_THROW(parsed("--track " + std::string(argument)), CLI::ParseError) << argument;
    }
}

TEST(TrackOptions, FollowConfirmedTracksThatAreSeenOrHidden) {
    using State = ClusterTracker::State;
    const ClusterGeometry box(10, 10, 20, 20, 0);
    EXPECT_TRUE(isFollowed({1, State::Confirmed, box, 0, 0, 0, 3, 0, false}));
    EXPECT_TRUE(isFollowed({1, State::Confirmed, box, 0, 0, -1, 3, 0, true}));
    EXPECT_FALSE(isFollowed({1, State::Confirmed, box, 0, 0, -1, 3, 1, false}));
    EXPECT_FALSE(isFollowed({1, State::Tentative, box, 0, 0, 0, 2, 0, false}));
}

}  // namespace
}  // namespace kelvora::tool
