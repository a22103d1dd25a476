// SPDX-License-Identifier: MIT
// Real recordings, each in its original format and as records that were converted by other
// software.
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

#include "recording/event_cleaner.hpp"
#include "recording/formats/format_table.hpp"
#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::HasSubstr;

std::filesystem::path dataDirectory() {
    const char* const chosen = std::getenv("KELVORA_TEST_DATA");
    return chosen != nullptr ? chosen : KELVORA_TEST_DATA;
}

struct Original {
    const char* name;  // of the records
    const char* file;
    const char* columns;
    const char* format;
    SensorSize sensor_size;
    bool is_longer;  // than the records
};

class SharedRecordings : public ::testing::TestWithParam<Original> {
protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(directory / "original")) {
            GTEST_SKIP() << "there are no recordings in " << directory
                         << "; set KELVORA_TEST_DATA to the directory that holds them";
        }
    }

    const std::filesystem::path directory = dataDirectory();
};

class OriginalRecordings : public SharedRecordings {};

TEST_P(OriginalRecordings, GiveExactlyTheEventsOfTheirRecords) {
    ReadOptions options;
    options.text.columns = textColumnsFromString(GetParam().columns);
    const auto path = directory / "original" / GetParam().file;
    const Outcome original = readRecording(path, options);
    const Outcome records =
        readRecording(directory / (std::string(GetParam().name) + ".events.bin"));
    EXPECT_EQ(original.error, "");
    EXPECT_EQ(records.error, "");
    ASSERT_GT(records.events.size(), 0U);
    ASSERT_GE(original.events.size(), records.events.size());
    EXPECT_EQ(original.events.size() > records.events.size(), GetParam().is_longer);
    EXPECT_TRUE(std::equal(records.events.begin(), records.events.end(), original.events.begin()));
}

TEST_P(OriginalRecordings, AreReadInFullAsTheirFormat) {
    ReadOptions options;
    options.text.columns = textColumnsFromString(GetParam().columns);
    const auto reader = openRecording(directory / "original" / GetParam().file, options);
    std::vector<Event2D> events;
    while (reader->read(events)) {
    }
    EXPECT_EQ(reader->format(), GetParam().format);
    EXPECT_EQ(reader->bytesRead(), reader->fileSize());
    EXPECT_EQ(reader->skippedWords(), 0U);
}

TEST_P(OriginalRecordings, NeedNoCleaning) {
    ReadOptions options;
    options.text.columns = textColumnsFromString(GetParam().columns);
    Outcome original = readRecording(directory / "original" / GetParam().file, options);
    EventCleaner cleaner(GetParam().sensor_size);
    cleaner.clean(original.events);
    EXPECT_EQ(cleaner.droppedOffSensor(), 0U);
    EXPECT_EQ(cleaner.clampedTimes(), 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Files, OriginalRecordings,
    ::testing::Values(
        Original{"gen3_sparklers", "gen3_sparklers.evt2.raw", "", "evt2", {640, 480}, false},
        Original{"gen41_street", "gen41_street.evt3.raw", "", "evt3", {1280, 720}, false},
        Original{"gen3_room_triggers", "gen3_room_triggers.evt3.raw", "", "evt3", {640, 480}, true},
        Original{"davis240_slider_depth",
                 "davis240_slider_depth.txyp.txt",
                 "",
                 "text",
                 {240, 180},
                 false},
        Original{"genx320_digit", "genx320_digit.xypt.csv", "xypt", "text", {320, 320}, true}),
    [](const auto& tested) { return std::string(tested.param.name); });

class AllRecordings : public SharedRecordings {};

TEST_F(AllRecordings, AreReadAsRecordsToTheirEnd) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        if (entry.path().extension() == ".bin") {
            const Outcome outcome = readRecording(entry.path());
            EXPECT_EQ(outcome.error, "");
            EXPECT_EQ(outcome.events.size() * 16, entry.file_size()) << entry.path();
            ++count;
        }
    }
    EXPECT_GT(count, 0U);
}

TEST_F(AllRecordings, OfOtherFormatsAreRefusedByName) {
    const auto original = directory / "original";
    EXPECT_THAT(readRecording(original / "atis_ncars_crop.td.dat").error,
                HasSubstr("is a DAT recording"));
    EXPECT_THAT(readRecording(original / "davis346_two_cars.aedat4").error,
                HasSubstr("is an AEDAT file"));
    EXPECT_THAT(readRecording(original / "dvs128_walking.aedat").error,
                HasSubstr("is an AEDAT file"));
    EXPECT_THAT(readRecording(original / "mvsec346_sparse_000000.hdf5").error,
                HasSubstr("is an HDF5 file"));
    EXPECT_THAT(readRecording(original / "davis346_two_cars.converted_dsec_layout.h5").error,
                HasSubstr("is an HDF5 file"));
}

TEST_F(AllRecordings, WhoseColumnsAreNotInTheUsualOrderAreRefusedWithoutTheirOrder) {
    EXPECT_THAT(readRecording(directory / "original" / "genx320_digit.xypt.csv").error,
                HasSubstr("line 1, give the order of the columns with ReadOptions::text.columns"));
}

TEST_F(AllRecordings, TellTheirSensorSizeIfTheirHeaderDoes) {
    EXPECT_EQ(openRecording(directory / "original" / "gen3_room_triggers.evt3.raw")->sensorSize(),
              (SensorSize{640, 480}));
    EXPECT_FALSE(openRecording(directory / "original" / "gen41_street.evt3.raw")->sensorSize());
}

}  // namespace
}  // namespace kelvora::recording
