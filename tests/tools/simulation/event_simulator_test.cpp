// SPDX-License-Identifier: MIT
#include "simulation/event_simulator.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "simulation/random_scene.hpp"
#include "tools/simulation/simulated_recording.hpp"

namespace kelvora::simulation {
namespace {

SimulatedRecording recordObjects(const SceneOptions& options, std::vector<SceneObject> objects) {
    return record(
        EventSimulator(options, Scene(options.width, options.height, std::move(objects))));
}

SceneOptions smallDefaultScene(std::uint64_t seed) {
    SceneOptions options;
    options.width = 160;
    options.height = 120;
    options.duration_us = 200'000;
    options.seed = seed;
    return options;
}

// Intersection over union of a row's box with the box around events.
double overlap(const GroundTruth& truth, const Box& box) {
    const Box other{truth.x, truth.y, truth.x + truth.width, truth.y + truth.height};
    const double width = std::min(box.right, other.right) - std::max(box.left, other.left);
    const double height = std::min(box.bottom, other.bottom) - std::max(box.top, other.top);
    if (width <= 0 || height <= 0) {
        return 0;
    }
    const double area = (box.right - box.left) * (box.bottom - box.top);
    return width * height / (area + truth.width * truth.height - width * height);
}

TEST(EventSimulator, GivesTheSameEventsAndTruthForTheSameSeed) {
    const auto a = record(EventSimulator(smallDefaultScene(7)));
    const auto b = record(EventSimulator(smallDefaultScene(7)));
    ASSERT_GT(a.events.size(), 1000U);
    EXPECT_EQ(a.events.size(), b.events.size());
    EXPECT_EQ(hashOf(a.events), hashOf(b.events));
    ASSERT_EQ(a.truth.size(), b.truth.size());
    for (std::size_t i = 0; i < a.truth.size(); ++i) {
        EXPECT_EQ(toCsv(a.truth[i]), toCsv(b.truth[i]));
    }
}

TEST(EventSimulator, GivesOtherEventsForAnotherSeed) {
    const auto a = record(EventSimulator(smallDefaultScene(7)));
    const auto b = record(EventSimulator(smallDefaultScene(8)));
    EXPECT_NE(hashOf(a.events), hashOf(b.events));
}

// Only change this value with an intended change of the model, and mention it in CHANGELOG.md. If
// it differs between compilers or machines, the simulator is not deterministic.
TEST(EventSimulator, GivesTheSameEventsWithEveryCompilerAndOnEveryMachine) {
    const auto recording = record(EventSimulator(smallDefaultScene(7)));
    EXPECT_EQ(recording.events.size(), 22480U);
    EXPECT_EQ(hashOf(recording.events), 16035779232970634674U);
}

TEST(EventSimulator, OrdersEventsByTimeFromZeroToTheDuration) {
    const auto recording = record(EventSimulator(smallDefaultScene(3)));
    EXPECT_LT(recording.events.front().timestamp, 10'000U);
    EXPECT_GE(recording.events.back().timestamp, 190'000U);
    EXPECT_LT(recording.events.back().timestamp, 200'000U);
    EXPECT_TRUE(std::is_sorted(
        recording.events.begin(), recording.events.end(),
        [](const Event2D& a, const Event2D& b) { return a.timestamp < b.timestamp; }));
}

TEST(EventSimulator, KeepsEventsOnTheSensorAtAllSizes) {
    for (const auto& [width, height] :
         std::vector<std::pair<int, int>>{{16, 16}, {32, 32}, {20, 300}, {1280, 720}}) {
        SceneOptions options = smallDefaultScene(5);
        options.width = width;
        options.height = height;
        options.duration_us = 50'000;
        const auto recording = record(EventSimulator(options));
        EXPECT_FALSE(recording.events.empty());
        for (const Event2D& event : recording.events) {
            ASSERT_LT(event.x, width);
            ASSERT_LT(event.y, height);
            ASSERT_LE(event.polarity, 1);
        }
    }
}

TEST(EventSimulator, EachStepGivesTheEventsOfOneInterval) {
    SceneOptions options = smallDefaultScene(7);
    options.duration_us = 25'000;
    EventSimulator simulator(options);
    for (const std::uint64_t begin_us : {0U, 10'000U, 20'000U}) {
        std::vector<Event2D> events;
        std::vector<GroundTruth> truth;
        ASSERT_TRUE(simulator.step(events, truth));
        ASSERT_FALSE(events.empty());
        EXPECT_GE(events.front().timestamp, begin_us);
        EXPECT_LT(events.back().timestamp, std::min<std::uint64_t>(begin_us + 10'000, 25'000));
        // The last interval is incomplete and has no truth.
        EXPECT_EQ(truth.empty(), begin_us == 20'000);
        for (const GroundTruth& row : truth) {
            EXPECT_EQ(row.timestamp_us, begin_us + 10'000);
        }
    }
    std::vector<Event2D> events;
    std::vector<GroundTruth> truth;
    EXPECT_FALSE(simulator.step(events, truth));
    EXPECT_TRUE(events.empty() && truth.empty());
}

TEST(EventSimulator, ABrightDiscMakesOnEventsAheadAndOffEventsBehindADarkOneTheReverse) {
    for (const double contrast : {0.8, -0.8}) {
        SceneOptions options = quietOptions();
        options.duration_us = 10'000;
        const auto recording = recordObjects(options, {discMovingRight(contrast)});
        ASSERT_GT(recording.events.size(), 100U);
        for (const Event2D& event : recording.events) {
            const bool ahead = event.x + 0.5 > 41.5;  // the centre moves from 40 to 43
            const bool on = event.polarity == 1;
            // Where the outline is parallel to the path, the same pixels are ahead and behind.
            if (std::abs(event.x + 0.5 - 41.5) > 3) {
                EXPECT_EQ(on, ahead == (contrast > 0)) << event.x << ' ' << event.y;
            }
        }
    }
}

TEST(EventSimulator, MoreContrastMakesMoreEvents) {
    std::size_t last = 0;
    for (const double contrast : {0.2, 0.4, 0.8, 1.6}) {
        const auto recording = recordObjects(quietOptions(), {discMovingRight(contrast)});
        EXPECT_GT(recording.events.size(), last + last / 2);
        last = recording.events.size();
    }
}

TEST(EventSimulator, AStillSceneWithoutNoiseMakesNoEvents) {
    SceneObject disc = discMovingRight(1);
    disc.velocity = {0, 0};
    EXPECT_TRUE(recordObjects(quietOptions(), {disc}).events.empty());
}

TEST(EventSimulator, AddsBackgroundNoiseAtItsRate) {
    SceneOptions options = quietOptions();
    options.noise_rate_hz = 5;
    options.duration_us = 1'000'000;
    const double expected = 160 * 120 * 5;
    const auto recording = recordObjects(options, {});
    EXPECT_NEAR(static_cast<double>(recording.events.size()), expected, 5 * std::sqrt(expected));
}

TEST(EventSimulator, AddsHotPixelsAtTheirRate) {
    SceneOptions options = quietOptions();
    options.hot_pixels = 3;
    options.hot_pixel_rate_hz = 1000;
    options.duration_us = 1'000'000;
    std::map<std::pair<int, int>, int> counts;
    for (const Event2D& event : recordObjects(options, {}).events) {
        ++counts[{event.x, event.y}];
    }
    ASSERT_EQ(counts.size(), 3U);
    for (const auto& [place, count] : counts) {
        EXPECT_NEAR(count, 1000, 5 * std::sqrt(1000));
    }
}

TEST(EventSimulator, TruthBoxesHoldTheEventsOfTheirIntervalAndFitThemTightly) {
    SceneOptions options = quietOptions();
    options.width = 320;
    options.height = 240;
    options.duration_us = 1'000'000;
    options.lights = 0;
    int intervals = 0;
    int tight = 0;
    for (const auto& [discs, bars, polygons] :
         {std::array{1, 0, 0}, std::array{0, 1, 0}, std::array{0, 0, 1}}) {
        options.discs = discs;
        options.bars = bars;
        options.polygons = polygons;
        EventSimulator simulator(options);
        std::vector<Event2D> events;
        std::vector<GroundTruth> truth;
        while (simulator.step(events, truth)) {
            ASSERT_EQ(truth.size(), 1U);
            Box box{1e9, 1e9, 0, 0};
            for (const Event2D& event : events) {
                box = unite(box, {event.x + 0.0, event.y + 0.0, event.x + 1.0, event.y + 1.0});
            }
            // The smooth outline extends half a pixel further, and boxes contain whole pixels.
            EXPECT_GE(box.left, truth[0].x - 1.5);
            EXPECT_GE(box.top, truth[0].y - 1.5);
            EXPECT_LE(box.right, truth[0].x + truth[0].width + 1.5);
            EXPECT_LE(box.bottom, truth[0].y + truth[0].height + 1.5);
            ++intervals;
            tight += overlap(truth[0], box) > 0.8 ? 1 : 0;
            events.clear();
            truth.clear();
        }
    }
    EXPECT_EQ(intervals, 300);
    EXPECT_GE(tight, 290);
}

TEST(EventSimulator, OcclusionReducesVisibilityAndIdsStay) {
    SceneOptions options = quietOptions();
    SceneObject front = discMovingRight(-0.5);
    front.pose.centre.x = 70;
    front.velocity = {-300, 0};
    const auto recording = recordObjects(options, {discMovingRight(0.5), front});
    ASSERT_EQ(recording.truth.size(), 20U);
    double lowest = 1;
    for (std::size_t i = 0; i < recording.truth.size(); ++i) {
        const GroundTruth& row = recording.truth[i];
        EXPECT_EQ(row.id, i % 2 == 0 ? 1 : 2);
        if (row.id == 1) {
            lowest = std::min(lowest, static_cast<double>(row.visibility));
        } else {
            EXPECT_NEAR(row.visibility, 1, 1e-6);
        }
    }
    EXPECT_LT(lowest, 0.2);
    EXPECT_NEAR(recording.truth.front().visibility, 1, 1e-6);
    EXPECT_NEAR(recording.truth[18].visibility, 1, 1e-6);
}

TEST(EventSimulator, ObjectsOfTheDefaultSceneHideOneAnotherNowAndThen) {
    SceneOptions options;
    const auto recording = record(EventSimulator(options));
    std::set<int> hidden_ids;
    std::size_t free_rows = 0;
    for (const GroundTruth& row : recording.truth) {
        if (row.visibility < 0.9F) {
            hidden_ids.insert(row.id);
        } else {
            ++free_rows;
        }
    }
    EXPECT_GE(hidden_ids.size(), 3U);
    EXPECT_GT(free_rows, recording.truth.size() * 8 / 10);
}

TEST(EventSimulator, ALightFlickersAtItsFrequencyInItsPlace) {
    SceneOptions options = quietOptions();
    options.discs = options.bars = options.polygons = 0;
    options.light_frequency_hz = 50;
    options.duration_us = 1'000'000;
    const auto recording = record(EventSimulator(options));
    // The polarity of the light's middle pixel goes from OFF to ON once per period.
    const GroundTruth& light = recording.truth.front();
    EXPECT_FALSE(light.moving);
    const int x = static_cast<int>(light.x + light.width / 2);
    const int y = static_cast<int>(light.y + light.height / 2);
    int rises = 0;
    int last = 0;
    for (const Event2D& event : recording.events) {
        if (event.x == x && event.y == y) {
            rises += event.polarity > last ? 1 : 0;
            last = event.polarity;
        }
    }
    EXPECT_EQ(rises, 50);
}

TEST(EventSimulator, RefusesInvalidOptionsAndScenesOfAnotherSize) {
    SceneOptions options = quietOptions();
    EXPECT_THROW(EventSimulator(options, Scene(320, 240, {})), std::invalid_argument);
    options.contrast_threshold = -1;
    EXPECT_THROW(EventSimulator{options}, std::invalid_argument);
    EXPECT_THROW(EventSimulator(options, Scene(160, 120, {})), std::invalid_argument);
}

}  // namespace
}  // namespace kelvora::simulation
