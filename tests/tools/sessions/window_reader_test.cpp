// SPDX-License-Identifier: MIT
#include "sessions/window_reader.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "kelvora/recording/recording_error.hpp"
#include "support/temporary_directory.hpp"
#include "tools/sessions/keyword_wording.hpp"

namespace kelvora::tool {
namespace {

/// A window for comparison: its start, and the columns of its events.
using Window = std::pair<std::uint64_t, std::vector<int>>;

class WindowReaderTest : public testing::Test {
protected:
    WindowReader readerOf(const std::string& text) const {
        Settings settings;
        settings.windows = options;
        return {recording::openRecording(directory.file("events.txt", text)),
                {100, 100},
                options,
                InputBounds("events.txt", settings, kKeywordWording)};
    }

    static std::vector<Window> windowsOf(WindowReader& reader) {
        std::vector<Window> windows;
        bool has_more = true;
        while (has_more) {
            has_more = reader.read();
            recording::Window window;
            while (reader.next(window)) {
                Window& found = windows.emplace_back(window.start_time, std::vector<int>());
                for (const Event2D& event : window) {
                    found.second.push_back(event.x);
                }
            }
        }
        return windows;
    }

    std::vector<Window> windowsOf(const std::string& text) const {
        WindowReader reader = readerOf(text);
        return windowsOf(reader);
    }

    test::TemporaryDirectory directory;
    WindowSettings options;
};

constexpr const char* kEvents =
    "5000 1 0 1\n9999 2 0 0\n10000 3 0 1\n9000 4 0 1\n10001 100 0 1\n35000 5 0 0\n";

TEST_F(WindowReaderTest, CutsCleanedEventsIntoWindows) {
    WindowReader reader = readerOf(kEvents);
    EXPECT_EQ(windowsOf(reader),
              (std::vector<Window>{{0, {1, 2}}, {10'000, {3, 4}}, {30'000, {5}}}));
    EXPECT_EQ(reader.eventCleaner().droppedOffSensor(), 1U);
    EXPECT_EQ(reader.eventCleaner().clampedTimes(), 1U);
    EXPECT_EQ(reader.source().format(), "text");
    EXPECT_FALSE(reader.defect());
}

TEST_F(WindowReaderTest, KeepsTheRequestedPartAfterTheFirstEvent) {
    options.from = Duration{4'999};
    options.to = Duration{30'000};
    EXPECT_EQ(windowsOf(kEvents), (std::vector<Window>{{0, {2}}, {10'000, {3, 4}}}));
}

TEST_F(WindowReaderTest, SaysThatARangeIsAfterTheLastEvent) {
    options.from = Duration{30'001};
    WindowReader reader = readerOf(kEvents);
    EXPECT_TRUE(windowsOf(reader).empty());
    EXPECT_EQ(reader.remark(), "the recording ends before the requested time range");
    options.from = Duration{30'000};
    WindowReader inside = readerOf(kEvents);
    EXPECT_EQ(windowsOf(inside).size(), 1U);
    EXPECT_EQ(inside.remark(), "");
}

TEST_F(WindowReaderTest, SaysThatARangeEndsAfterTheLastEvent) {
    options.to = Duration{30'001};
    WindowReader reader = readerOf(kEvents);
    EXPECT_EQ(windowsOf(reader).size(), 3U);
    EXPECT_EQ(reader.remark(), "the recording ends within the requested time range");
    options.to = Duration{30'000};
    WindowReader complete = readerOf(kEvents);
    EXPECT_EQ(windowsOf(complete).size(), 2U);
    EXPECT_EQ(complete.remark(), "");
}

TEST_F(WindowReaderTest, SaysNothingAboutTheRangeAfterADefect) {
    options.to = Duration{50'000};
    WindowReader reader = readerOf("5000 1 0 1\n16000 x\n");
    EXPECT_EQ(windowsOf(reader).size(), 1U);
    EXPECT_EQ(reader.remark(), "");
}

TEST_F(WindowReaderTest, KeepsTheRequestedPolarity) {
    options.polarity = Polarity::Off;
    EXPECT_EQ(windowsOf(kEvents), (std::vector<Window>{{0, {2}}, {30'000, {5}}}));
}

TEST_F(WindowReaderTest, GivesAllBeforeADefectAndThenTheDefect) {
    WindowReader reader = readerOf("5000 1 0 1\n15000 2 0 1\n16000 x\n");
    EXPECT_EQ(windowsOf(reader), (std::vector<Window>{{0, {1}}, {10'000, {2}}}));
    EXPECT_FALSE(reader.read());
    ASSERT_TRUE(reader.defect());
    EXPECT_THROW(std::rethrow_exception(reader.defect()), recording::RecordingError);
}

std::string messageOf(const std::exception_ptr& defect) {
    try {
        std::rethrow_exception(defect);
    } catch (const recording::RecordingError& error) {
        return error.what();
    }
}

TEST_F(WindowReaderTest, EndsAtAWindowWithTooManyEvents) {
    options.max_window_events = 2;
    WindowReader reader =
        readerOf("5000 1 0 1\n5000 2 0 1\n15000 3 0 1\n15001 4 0 1\n15002 5 0 1\n25000 6 0 1\n");
    EXPECT_EQ(windowsOf(reader), (std::vector<Window>{{0, {1, 2}}}));
    ASSERT_TRUE(reader.defect());
    EXPECT_EQ(messageOf(reader.defect()),
              "events.txt: has more than 2 events in a window, event at 10000 us, shorten the "
              "windows, or allow more events with max_window_events");
    EXPECT_FALSE(reader.read());
}

// Without reading the rest of the recording.
TEST_F(WindowReaderTest, EndsWhereTheClockStandsStill) {
    std::string text = "5000 1 0 1\n";
    for (int i = 0; i < 100'000; ++i) {
        text += "15000 2 0 1\n";
    }
    options.max_window_events = 20'000;
    WindowReader reader = readerOf(text);
    EXPECT_EQ(windowsOf(reader), (std::vector<Window>{{0, {1}}}));
    EXPECT_TRUE(reader.defect());
    EXPECT_LT(reader.source().bytesRead(), text.size() / 2);
}

}  // namespace
}  // namespace kelvora::tool
