// SPDX-License-Identifier: MIT
#include "kelvora/recording/event_reader.hpp"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <thread>

#include "kelvora/recording/recording_error.hpp"
#include "recording/formats/evt/evt_header.hpp"
#include "recording_support.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class EventReaderTest : public ::testing::Test {
protected:
    test::TemporaryDirectory directory;
};

TEST_F(EventReaderTest, ReadsEachFormatByItsContentUnderAnyName) {
    EXPECT_THAT(readRecording(directory.file("a", recordBytes(1, 2, 3, 1))).events,
                ElementsAre(eventAt(1, 2, 3, 1)));
    EXPECT_THAT(readRecording(directory.file("b.bin", "1 2 3 1\n")).events,
                ElementsAre(eventAt(1, 2, 3, 1)));
    EXPECT_THAT(
        readRecording(directory.file("c.txt", "% evt 2.0\n" + words32({0x80000000, 0x10001003})))
            .events,
        ElementsAre(eventAt(0, 2, 3, 1)));
    EXPECT_THAT(
        readRecording(directory.file("d.csv", "% evt 3.0\n" + words16({0x8000, 0x0003, 0x2802})))
            .events,
        ElementsAre(eventAt(0, 2, 3, 1)));
}

TEST_F(EventReaderTest, ReturnsFormatAndSensorSize) {
    const auto evt3 = openRecording(directory.file("a", evtHeader(3, {640, 480})));
    EXPECT_EQ(evt3->format(), "evt3");
    EXPECT_EQ(evt3->sensorSize(), (SensorSize{640, 480}));

    const auto text = openRecording(directory.file("b", "240 180\n1 2 3 0\n"));
    EXPECT_EQ(text->format(), "text");
    EXPECT_EQ(text->sensorSize(), (SensorSize{240, 180}));

    const auto records = openRecording(directory.file("c", recordBytes(1, 2, 3, 1)));
    EXPECT_EQ(records->format(), "records");
    EXPECT_FALSE(records->sensorSize());
}

TEST_F(EventReaderTest, UsesTheGivenSensorSize) {
    ReadOptions options;
    options.sensor_size = SensorSize{100, 50};
    EXPECT_EQ(openRecording(directory.file("a", "240 180\n1 2 3 0\n"), options)->sensorSize(),
              (SensorSize{100, 50}));
    EXPECT_EQ(openRecording(directory.file("b", recordBytes(1, 2, 3, 1)), options)->sensorSize(),
              (SensorSize{100, 50}));
}

TEST_F(EventReaderTest, UsesTheGivenFormat) {
    ReadOptions options;
    options.format = "evt3";
    EXPECT_THAT(
        readRecording(directory.file("a", words16({0x8000, 0x0003, 0x2802})), options).events,
        ElementsAre(eventAt(0, 2, 3, 1)));
    options.format = "evt2";
    EXPECT_THAT(
        readRecording(directory.file("b", "% Date today\n" + words32({0x80000000, 0x10001003})),
                      options)
            .events,
        ElementsAre(eventAt(0, 2, 3, 1)));
}

TEST_F(EventReaderTest, RefusesAFormatThatTheHeaderContradicts) {
    ReadOptions options;
    options.format = "evt2";
    EXPECT_THAT(readRecording(directory.file("a.raw", "% evt 3.0\n"), options).error,
                EndsWith("a.raw: is of format evt3 according to its header, not evt2, leave out "
                         "ReadOptions::format"));
    EXPECT_THAT(readRecording(directory.file("b.raw", "% evt 4.0\n"), options).error,
                HasSubstr("EVT 4"));
}

TEST_F(EventReaderTest, UsesTheGivenTextLayout) {
    ReadOptions options;
    options.text.columns = textColumnsFromString("xypt");
    options.text.time_unit = TimeUnit::Milliseconds;
    EXPECT_THAT(readRecording(directory.file("a", "2,3,1,4\n"), options).events,
                ElementsAre(eventAt(4000, 2, 3, 1)));
}

TEST_F(EventReaderTest, FindsTheColumnsInTheHeaderOfTheRecording) {
    EXPECT_THAT(readRecording(directory.file("a", "# made today\nx,y,p,t_ns\n2,3,1,4000\n")).events,
                ElementsAre(eventAt(4, 2, 3, 1)));
}

TEST_F(EventReaderTest, CountsLinesFromTheStartOfTheFile) {
    EXPECT_THAT(readRecording(directory.file("a", "# made today\n640 480\n1 2 3 0\nx\n")).error,
                HasSubstr(", line 4, "));
}

TEST_F(EventReaderTest, GivesTheEventsBeforeADefectAndThenTheErrorEachTime) {
    const auto path =
        directory.file("a.bin", recordBytes(1, 2, 3, 1) + recordBytes(4, 5, 6, 0) + "cut");
    const auto reader = openRecording(path);
    std::vector<Event2D> events;
    EXPECT_TRUE(reader->read(events));
    EXPECT_EQ(events.size(), 2U);
    EXPECT_THROW(reader->read(events), RecordingError);
    EXPECT_THAT(events, IsEmpty());
    EXPECT_THROW(reader->read(events), RecordingError);
}

TEST_F(EventReaderTest, StaysAtTheEnd) {
    const auto reader = openRecording(directory.file("a", recordBytes(1, 2, 3, 1)));
    std::vector<Event2D> events;
    EXPECT_TRUE(reader->read(events));
    EXPECT_FALSE(reader->read(events));
    EXPECT_FALSE(reader->read(events));
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(EventReaderTest, CountsBytesUpToTheSizeOfTheFile) {
    const std::string content = "% evt 3.0\n" + words16({0x8000, 0x0003, 0x2802, 0x9000});
    const auto reader = openRecording(directory.file("a", content));
    EXPECT_EQ(reader->fileSize(), content.size());
    EXPECT_EQ(reader->bytesRead(), 10U);
    std::vector<Event2D> events;
    while (reader->read(events)) {
    }
    EXPECT_EQ(reader->bytesRead(), content.size());
    EXPECT_EQ(reader->skippedWords(), 1U);
}

TEST_F(EventReaderTest, GivesLongRecordingsInBoundedChunks) {
    std::string content = "640 480\n";
    for (int i = 0; i < 100'000; ++i) {
        content += std::to_string(i) + " 2 3 " + std::to_string(i % 2) + "\n";
    }
    const auto reader = openRecording(directory.file("a", content));
    std::vector<Event2D> events;
    std::uint64_t count = 0;
    while (reader->read(events)) {
        ASSERT_LE(events.size(), 16384U);
        for (const Event2D& event : events) {
            ASSERT_EQ(event, eventAt(count, 2, 3, static_cast<int>(count % 2)));
            ++count;
        }
    }
    EXPECT_EQ(count, 100'000U);
}

TEST_F(EventReaderTest, ReadsCommentsLongerThanItsBuffers) {
    std::string content;
    while (content.size() < 1'000'000) {
        content += "# a long introduction\n";
    }
    ReadOptions options;
    options.format = "text";
    EXPECT_THAT(readRecording(directory.file("a", content + "1 2 3 0"), options).events,
                ElementsAre(eventAt(1, 2, 3, 0)));
}

TEST_F(EventReaderTest, ReadsRecordingsWithoutEvents) {
    EXPECT_THAT(readRecording(directory.file("a", "% evt 3.0\n% end\n")).error, IsEmpty());
    EXPECT_THAT(readRecording(directory.file("b", "640 480\n")).error, IsEmpty());
    EXPECT_THAT(readRecording(directory.file("c", "640 480")).error, IsEmpty());
}

TEST_F(EventReaderTest, ReadsPipes) {
    const auto path = directory.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::string content;
    for (std::uint64_t i = 0; i < 50'000; ++i) {
        content += recordBytes(i, 2, 3, 1);
    }
    std::thread writer([&] { std::ofstream(path, std::ios::binary) << content; });
    const Outcome outcome = readRecording(path);
    writer.join();
    EXPECT_EQ(outcome.events.size(), 50'000U);
    EXPECT_EQ(outcome.events.back(), eventAt(49'999, 2, 3, 1));
    EXPECT_THAT(outcome.error, IsEmpty());
}

TEST_F(EventReaderTest, DoesNotKnowTheSizeOfAPipe) {
    const auto path = directory.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(path, std::ios::binary) << recordBytes(1, 2, 3, 1); });
    EXPECT_EQ(openRecording(path)->fileSize(), 0U);
    writer.join();
}

TEST_F(EventReaderTest, RefusesFilesThatCannotBeOpened) {
    EXPECT_THAT(readRecording(directory.file("missing")).error,
                EndsWith("missing: cannot be opened (No such file or directory), check the path"));
    EXPECT_THAT(readRecording(directory.file("")).error,
                HasSubstr(": is a directory, give a file in it"));
}

TEST_F(EventReaderTest, RefusesFilesThatMayNotBeRead) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "the superuser may read every file";
    }
    const auto path = directory.file("a", recordBytes(1, 2, 3, 1));
    std::filesystem::permissions(path, std::filesystem::perms::none);
    EXPECT_THAT(readRecording(path).error, HasSubstr("check its permissions"));
}

// The memory of the process itself: it opens, but reading at address 0 fails.
TEST_F(EventReaderTest, ReportsErrorsOfReading) {
    EXPECT_THAT(readRecording("/proc/self/mem").error,
                HasSubstr("cannot be read (Input/output error)"));
}

TEST_F(EventReaderTest, RefusesEmptyFiles) {
    EXPECT_THAT(readRecording(directory.file("a", "")).error, HasSubstr("a: is empty, "));
    ReadOptions options;
    options.format = "records";
    EXPECT_THAT(readRecording(directory.file("a", ""), options).error, HasSubstr("a: is empty, "));
}

TEST_F(EventReaderTest, RefusesHeadersThatDoNotEnd) {
    std::string content = "% evt 3.0\n";
    while (content.size() < 1'000'000) {
        content += "% and on and on\n";
    }
    EXPECT_THAT(readRecording(directory.file("a", content)).error,
                HasSubstr("has a header that does not end"));
}

}  // namespace
}  // namespace kelvora::recording
