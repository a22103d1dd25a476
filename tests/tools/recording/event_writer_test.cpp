// SPDX-License-Identifier: MIT
#include "kelvora/recording/event_writer.hpp"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "kelvora/recording/recording_error.hpp"
#include "recording_support.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr SensorSize kSensorSize{2048, 2048};

// Long enough for the time of EVT3 to wrap around many times, and sometimes in one pause.
constexpr std::uint64_t kLongestPause = 40'000'000;

void writeRecording(const std::filesystem::path& path, const std::string& format,
                    const std::vector<Event2D>& events) {
    const auto writer = createRecording(path, format, kSensorSize);
    writer->write(events);
    writer->close();
}

std::string errorOfWriting(const std::filesystem::path& path, const std::string& format,
                           const std::vector<Event2D>& events) {
    try {
        writeRecording(path, format, events);
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "";
}

class EventWriterTest : public ::testing::TestWithParam<std::string> {
protected:
    test::TemporaryDirectory directory;
    const std::filesystem::path path = directory.file("recording");
};

TEST_P(EventWriterTest, WritesEventsThatAReaderReadsBack) {
    for (const unsigned seed : {1U, 2U, 3U}) {
        const std::vector<Event2D> events = randomRecording(seed, 20'000, kLongestPause);
        ASSERT_GT(events.back().timestamp, std::uint64_t{1} << 24);
        writeRecording(path, GetParam(), events);
        const Outcome outcome = readRecording(path);
        EXPECT_THAT(outcome.error, IsEmpty());
        EXPECT_TRUE(outcome.events == events) << "seed " << seed;
    }
}

TEST_P(EventWriterTest, WritesTheSameInChunksOfAnySize) {
    const std::vector<Event2D> events = randomRecording(4, 1000, kLongestPause);
    const auto writer = createRecording(path, GetParam(), kSensorSize);
    for (std::size_t first = 0; first < events.size(); first += 7) {
        const std::size_t last = std::min(first + 7, events.size());
        writer->write({events.begin() + static_cast<std::ptrdiff_t>(first),
                       events.begin() + static_cast<std::ptrdiff_t>(last)});
    }
    writer->close();
    EXPECT_TRUE(readRecording(path).events == events);
}

TEST_P(EventWriterTest, WritesMoreThanItsBufferHolds) {
    const std::vector<Event2D> events = randomRecording(5, 200'000, 1000);
    writeRecording(path, GetParam(), events);
    EXPECT_TRUE(readRecording(path).events == events);
}

TEST_P(EventWriterTest, NotesFormatAndSensorSize) {
    writeRecording(path, GetParam(), {eventAt(1, 2, 3, 1)});
    const auto reader = openRecording(path);
    EXPECT_EQ(reader->format(), GetParam());
    if (GetParam() == "records") {
        EXPECT_FALSE(reader->sensorSize());
    } else {
        EXPECT_EQ(reader->sensorSize(), kSensorSize);
    }
}

TEST_P(EventWriterTest, KeepsARecordingThatIsNotClosedAsPartial) {
    writeRecording(path, GetParam(), {eventAt(1, 2, 3, 1), eventAt(2, 2, 3, 1)});
    std::filesystem::path partial;
    WriteOptions options;
    options.on_partial = [&](const std::filesystem::path& name) { partial = name; };
    createRecording(path, GetParam(), kSensorSize, options)->write({eventAt(1, 2, 3, 1)});
    EXPECT_EQ(partial, path.string() + ".partial");
    EXPECT_EQ(readRecording(partial).events.size(), 1U);
    EXPECT_EQ(readRecording(path).events.size(), 2U);
}

TEST_P(EventWriterTest, KeepsNothingOfARecordingWithoutEvents) {
    createRecording(path, GetParam(), kSensorSize);
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_P(EventWriterTest, ReplacesNothingUnlessAllowedTo) {
    writeRecording(path, GetParam(), {eventAt(1, 2, 3, 1)});
    WriteOptions options;
    options.overwrite = false;
    try {
        createRecording(path, GetParam(), kSensorSize, options);
        FAIL();
    } catch (const RecordingError& error) {
        EXPECT_EQ(error.problem(), "exists already");
    }
    EXPECT_EQ(readRecording(path).events.size(), 1U);
}

TEST_P(EventWriterTest, RefusesOtherPolarities) {
    EXPECT_THAT(errorOfWriting(path, GetParam(), {eventAt(17, 2, 3, 2)}),
                EndsWith("recording: cannot store the polarity 2, event at 17 us, write polarities "
                         "of 0 and 1 only"));
}

TEST_P(EventWriterTest, ReportsThatTheDiskIsFullOnceOnly) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "the system has no /dev/full";
    }
    const auto writer = createRecording("/dev/full", GetParam(), kSensorSize);
    writer->write({eventAt(1, 2, 3, 1)});
    try {
        writer->close();
        FAIL();
    } catch (const RecordingError& error) {
        EXPECT_STREQ(error.what(),
                     "/dev/full: cannot be written (No space left on device), check the free space "
                     "of the disk");
    }
    EXPECT_NO_THROW(writer->close());
}

TEST_P(EventWriterTest, RefusesPathsWhereNothingCanBeCreated) {
    EXPECT_THAT(
        errorOfWriting(directory.file("no/such/directory"), GetParam(), {}),
        HasSubstr("directory: cannot be created (No such file or directory), check the path"));
}

INSTANTIATE_TEST_SUITE_P(AllFormats, EventWriterTest,
                         ::testing::Values("records", "text", "evt2", "evt3"),
                         [](const auto& tested) { return tested.param; });

class EvtWriterTest : public EventWriterTest {};

TEST_P(EvtWriterTest, WritesTheHeaderInFull) {
    writeRecording(path, GetParam(), {});
    const std::string version = GetParam() == "evt2" ? "2" : "3";
    EXPECT_EQ(test::contentOf(path), "% evt " + version + ".0\n% format EVT" + version +
                                         ";height=2048;width=2048\n% geometry 2048x2048\n% end\n");
}

TEST_P(EvtWriterTest, KeepsTimesAcrossAllPausesItAccepts) {
    const std::uint64_t longest = std::uint64_t{1} << 40;
    std::vector<Event2D> events;
    std::uint64_t time = 0;
    for (std::uint64_t pause = 1; pause <= longest; pause *= 2) {
        time += pause;
        events.push_back(eventAt(time, 1, 2, 1));
        events.push_back(eventAt(time + pause / 2, 1, 2, 1));
        time += pause / 2;
    }
    writeRecording(path, GetParam(), events);
    EXPECT_EQ(readRecording(path).events, events);
    EXPECT_THAT(errorOfWriting(path, GetParam(), {eventAt(longest + 1, 1, 2, 1)}),
                HasSubstr("a pause of more than 12 days, event 0, subtract a start time from all"));
}

TEST_P(EvtWriterTest, RefusesPixelsBeyondElevenBits) {
    EXPECT_THAT(
        errorOfWriting(path, GetParam(), {eventAt(0, 1, 1, 1), eventAt(0, 2048, 3, 1)}),
        HasSubstr(
            "cannot store the pixel (2048, 3), because EVT coordinates end at 2047, event 1, write "
            "records or text"));
    EXPECT_THAT(errorOfWriting(path, GetParam(), {eventAt(0, 3, 2048, 1)}), HasSubstr("(3, 2048)"));
}

TEST_P(EvtWriterTest, RefusesTimesThatGoBack) {
    EXPECT_THAT(errorOfWriting(path, GetParam(), {eventAt(5, 1, 1, 1), eventAt(4, 1, 1, 1)}),
                HasSubstr("cannot store the time 4 us after 5 us, event 1, sort the events"));
}

INSTANTIATE_TEST_SUITE_P(EvtFormats, EvtWriterTest, ::testing::Values("evt2", "evt3"),
                         [](const auto& tested) { return tested.param; });

TEST(TextWriter, WritesSizeAndSecondsWithSixDecimals) {
    const test::TemporaryDirectory directory;
    const auto path = directory.file("a.txt");
    writeRecording(path, "text", {eventAt(5, 2, 3, 1), eventAt(1615211683123456, 65535, 0, 0)});
    EXPECT_EQ(test::contentOf(path), "2048 2048\n0.000005 2 3 1\n1615211683.123456 65535 0 0\n");
}

TEST(RecordsWriter, HoldsAnyEvent) {
    const test::TemporaryDirectory directory;
    const auto path = directory.file("a.bin");
    const std::vector<Event2D> events = {eventAt(kLatestTime, 65535, 65535, 1),
                                         eventAt(0, 0, 0, 0)};
    writeRecording(path, "records", events);
    EXPECT_EQ(readRecording(path).events, events);
}

}  // namespace
}  // namespace kelvora::recording
