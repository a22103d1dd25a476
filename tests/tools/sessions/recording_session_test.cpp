// SPDX-License-Identifier: MIT
#include "sessions/recording_session.hpp"

#include <gtest/gtest.h>

#include <string>

#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

class RecordingSession : public testing::Test {
protected:
    RecordingSession() {
        settings.method = "centroid";
        settings.centroid.clusters = 1;
    }

    /// The remarks on a recording with a single event at 5 ms.
    std::string remarks() const {
        const recording::SensorSize sensor{100, 100};
        WindowReader reader(recording::openRecording(path), sensor, settings.windows,
                            InputBounds(path, settings));
        Session session(settings, sensor);
        recording::Window window;
        while (reader.read()) {
        }
        while (reader.next(window)) {
            session.cluster(window);
        }
        return remarksOf(session, reader);
    }

    test::TemporaryDirectory directory;
    const std::filesystem::path path = directory.file("events.txt", "5000 1 0 1\n");
    Settings settings;
};

TEST_F(RecordingSession, HasTheRemarksOfBothParts) {
    const std::string few_events =
        "windows without clusters, because they had fewer than 2 events: 1";
    const std::string early_end = "the recording ends within the requested time range";
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
