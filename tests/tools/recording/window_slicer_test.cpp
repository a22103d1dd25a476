// SPDX-License-Identifier: MIT
#include "recording/window_slicer.hpp"

#include <gmock/gmock.h>

#include <stdexcept>

#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<Event2D> eventsAt(const std::vector<std::uint64_t>& times) {
    std::vector<Event2D> events;
    events.reserve(times.size());
    for (const std::uint64_t time : times) {
        events.push_back(eventAt(time, 1, 1, 1));
    }
    return events;
}

// The currently complete windows, as "[start, end): times".
std::vector<std::string> windowsOf(WindowSlicer& slicer) {
    std::vector<std::string> windows;
    Window window;
    while (slicer.next(window)) {
        std::string text =
            "[" + std::to_string(window.start_time) + ", " + std::to_string(window.end_time) + "):";
        for (const Event2D& event : window) {
            text += " " + std::to_string(event.timestamp);
        }
        windows.push_back(text);
    }
    return windows;
}

TEST(WindowSlicer, CountsWhatIsNotInACompleteWindowYet) {
    WindowSlicer slicer(10);
    slicer.add(eventsAt({1, 2, 13, 14, 15}));
    EXPECT_EQ(slicer.waiting(), 5U);
    EXPECT_EQ(slicer.startOfWaiting(), 0U);
    windowsOf(slicer);
    EXPECT_EQ(slicer.waiting(), 3U);
    EXPECT_EQ(slicer.startOfWaiting(), 10U);
}

TEST(WindowSlicer, ForgetsWhatIsCleared) {
    WindowSlicer slicer(10);
    slicer.add(eventsAt({1, 12, 13}));
    slicer.clear();
    EXPECT_EQ(slicer.waiting(), 0U);
    slicer.add(eventsAt({14, 25}));
    slicer.finish();
    EXPECT_THAT(windowsOf(slicer), ElementsAre("[10, 20): 14", "[20, 30): 25"));
}

TEST(WindowSlicer, CutsAtMultiplesOfTheLength) {
    WindowSlicer slicer(10);
    slicer.add(eventsAt({3, 9, 10, 19, 20}));
    EXPECT_THAT(windowsOf(slicer), ElementsAre("[0, 10): 3 9", "[10, 20): 10 19"));
    slicer.finish();
    EXPECT_THAT(windowsOf(slicer), ElementsAre("[20, 30): 20"));
    EXPECT_THAT(windowsOf(slicer), IsEmpty());
}

TEST(WindowSlicer, JoinsTheEventsOfAWindowFromSeveralChunks) {
    WindowSlicer slicer(10);
    slicer.add(eventsAt({11}));
    EXPECT_THAT(windowsOf(slicer), IsEmpty());
    slicer.add(eventsAt({12, 13}));
    slicer.add({});
    EXPECT_THAT(windowsOf(slicer), IsEmpty());
    slicer.add(eventsAt({19, 31, 32}));
    EXPECT_THAT(windowsOf(slicer), ElementsAre("[10, 20): 11 12 13 19"));
    slicer.add(eventsAt({33}));
    slicer.finish();
    EXPECT_THAT(windowsOf(slicer), ElementsAre("[30, 40): 31 32 33"));
}

TEST(WindowSlicer, KeepsWindowsThatWereNotTakenInTime) {
    WindowSlicer slicer(10);
    slicer.add(eventsAt({1, 11}));
    slicer.add(eventsAt({21, 31}));
    EXPECT_THAT(windowsOf(slicer), ElementsAre("[0, 10): 1", "[10, 20): 11", "[20, 30): 21"));
}

TEST(WindowSlicer, LeavesOutAnyNumberOfEmptyWindows) {
    WindowSlicer slicer(1);
    slicer.add(eventsAt({0, 9'000'000'000'000'000'000, kLatestTime}));
    slicer.finish();
    EXPECT_THAT(
        windowsOf(slicer),
        ElementsAre("[0, 1): 0", "[9000000000000000000, 9000000000000000001): 9000000000000000000",
                    "[9223372036854775807, 9223372036854775808): 9223372036854775807"));
}

TEST(WindowSlicer, HasNoWindowsWithoutEvents) {
    WindowSlicer slicer(10);
    EXPECT_THAT(windowsOf(slicer), IsEmpty());
    slicer.finish();
    EXPECT_THAT(windowsOf(slicer), IsEmpty());
}

TEST(WindowSlicer, RefusesWindowsOfNoLength) {
    EXPECT_THROW(WindowSlicer(0), std::invalid_argument);
}

TEST(WindowSlicer, GivesEveryEventOnceAndInItsWindowForAnyChunks) {
    const std::vector<Event2D> events = randomRecording(1, 20'000, 100'000);
    for (const std::size_t chunk_size : {1U, 7U, 1000U, 20'000U}) {
        WindowSlicer slicer(10'000);
        std::vector<Event2D> given;
        Window window;
        const auto take = [&] {
            while (slicer.next(window)) {
                ASSERT_GT(window.size(), 0U);
                ASSERT_EQ(window.start_time % 10'000, 0U);
                ASSERT_EQ(window.end_time, window.start_time + 10'000);
                ASSERT_GE(window.begin()->timestamp, window.start_time);
                ASSERT_LT((window.end() - 1)->timestamp, window.end_time);
                given.insert(given.end(), window.begin(), window.end());
            }
        };
        for (std::size_t first = 0; first < events.size(); first += chunk_size) {
            const std::size_t last = std::min(first + chunk_size, events.size());
            slicer.add({events.begin() + static_cast<std::ptrdiff_t>(first),
                        events.begin() + static_cast<std::ptrdiff_t>(last)});
            take();
        }
        slicer.finish();
        take();
        EXPECT_TRUE(given == events) << "chunks of " << chunk_size;
    }
}

}  // namespace
}  // namespace kelvora::recording
