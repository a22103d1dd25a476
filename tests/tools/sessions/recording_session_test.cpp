// SPDX-License-Identifier: MIT
#include "sessions/recording_session.hpp"

#include <gtest/gtest.h>

#include <string>

#include "kelvora/recording/recording_error.hpp"
#include "support/temporary_directory.hpp"
#include "tools/sessions/keyword_wording.hpp"

namespace kelvora::tool {
namespace {

class RecordingSession : public testing::Test {
protected:
    WindowReader open(const std::string& content) const {
        return openWindows(directory.file("events.txt", content), {}, settings, kKeywordWording);
    }

    /// The remarks on a recording with a single event at 5 ms.
    std::string remarks() const {
        WindowReader reader = open("100 100\n5000 1 0 1\n");
        Session session = makeSession(reader, settings);
        recording::Window window;
        while (reader.read()) {
        }
        while (reader.next(window)) {
            session.cluster(window);
        }
        return remarksOf(session, reader);
    }

    test::TemporaryDirectory directory;
    Settings settings;
};

TEST_F(RecordingSession, ClustersTheWindowsOfARecording) {
    WindowReader reader = open("100 90\n5000 1 0 1\n");
    EXPECT_EQ(reader.sensorSize().width, 100);
    EXPECT_EQ(reader.sensorSize().height, 90);
    Session session = makeSession(reader, settings);
    recording::Window window;
    EXPECT_TRUE(reader.read());
    EXPECT_FALSE(reader.read());
    ASSERT_TRUE(reader.next(window));
    session.cluster(window);
    EXPECT_EQ(session.windowCount(), 1U);
}

TEST_F(RecordingSession, NeedsTheSizeOfTheSensor) {
    try {
        open("5000 1 0 1\n");
        FAIL() << "nothing was thrown";
    } catch (const recording::RecordingError& error) {
        EXPECT_EQ(error.kind(), recording::ErrorKind::NoSensorSize);
        EXPECT_EQ(error.setting(), recording::Setting::SensorSize);
    }
}

TEST_F(RecordingSession, RefusesAHugeSensorOnlyWithTheGrid) {
    const WindowReader reader = open("65000 65000\n5000 1 0 1\n");
    EXPECT_THROW(makeSession(reader, settings), recording::RecordingError);
    settings.method = "density";
    const WindowReader without_grid = open("65000 65000\n5000 1 0 1\n");
    EXPECT_NO_THROW(makeSession(without_grid, settings));
}

TEST_F(RecordingSession, HasTheRemarksOfBothParts) {
    const std::string few_events =
        "windows without clusters, because they had fewer than 2 events: 1";
    const std::string early_end = "the recording ends within the requested time range";
    settings.method = "centroid";
    settings.centroid.clusters = 1;
    EXPECT_EQ(remarks(), "");
    settings.windows.to = Duration{10'000};
    EXPECT_EQ(remarks(), early_end);
    settings.centroid.clusters = 2;
    EXPECT_EQ(remarks(), few_events + "; " + early_end);
    settings.windows.to.reset();
    EXPECT_EQ(remarks(), few_events);
}

}  // namespace
}  // namespace kelvora::tool
