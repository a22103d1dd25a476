// SPDX-License-Identifier: MIT
#include "kelvora/recording/recording_error.hpp"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::recording {
namespace {

using Unit = ErrorPlace::Unit;

std::string_view shortName(Setting setting) {
    return setting == Setting::Columns ? "-c" : "-f";
}

RecordingError errorWith(const Remedy& remedy) {
    return {ErrorKind::Damaged, "a.raw", "is odd", {}, remedy};
}

TEST(RecordingError, IsOneLineThatNamesFileProblemPlaceAndRemedy) {
    EXPECT_STREQ(
        RecordingError(ErrorKind::Damaged, "a.raw", "is cut off", {Unit::Byte, 12}, "copy it again")
            .what(),
        "a.raw: is cut off, byte 12, copy it again");
    EXPECT_STREQ(
        RecordingError(ErrorKind::Damaged, "a.raw", "is empty", {}, "record it again").what(),
        "a.raw: is empty, record it again");
}

TEST(RecordingError, GivesItsPartsAlsoAsACopy) {
    const RecordingError error(ErrorKind::CannotHold, "a.raw", "is full", {Unit::EventAt, 12},
                               {"change {}", Setting::Columns});
    const RecordingError copy = error;  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(copy.kind(), ErrorKind::CannotHold);
    EXPECT_EQ(copy.file(), "a.raw");
    EXPECT_EQ(copy.problem(), "is full");
    EXPECT_EQ(copy.place().unit, Unit::EventAt);
    EXPECT_EQ(copy.place().number, 12U);
    EXPECT_EQ(copy.setting(), Setting::Columns);
    EXPECT_EQ(copy.remedy(shortName), "change -c");
    EXPECT_EQ(copy.message(shortName), "a.raw: is full, event at 12 us, change -c");
}

TEST(RecordingError, NamesSettingsAsTheProgramDoes) {
    const RecordingError error = errorWith({"give {} a or {} b", Setting::Format});
    EXPECT_EQ(error.message(shortName), "a.raw: is odd, give -f a or -f b");
    EXPECT_STREQ(error.what(),
                 "a.raw: is odd, give ReadOptions::format a or ReadOptions::format b");
}

TEST(RecordingError, HasANameInCppForEachSetting) {
    EXPECT_STREQ(errorWith({"{}", Setting::SensorSize}).what(),
                 "a.raw: is odd, ReadOptions::sensor_size");
    EXPECT_STREQ(errorWith({"{}", Setting::Columns}).what(),
                 "a.raw: is odd, ReadOptions::text.columns");
    EXPECT_STREQ(errorWith({"{}", Setting::TimeUnit}).what(),
                 "a.raw: is odd, ReadOptions::text.time_unit");
}

TEST(RecordingError, LeavesARemedyWithoutSettingAsItIs) {
    EXPECT_EQ(errorWith("write {}").remedy(shortName), "write {}");
}

TEST(ErrorPlace, IsWrittenInTwoWords) {
    EXPECT_EQ(toString(ErrorPlace{}), "");
    EXPECT_EQ(toString(ErrorPlace{Unit::Byte, 1}), "byte 1");
    EXPECT_EQ(toString(ErrorPlace{Unit::Line, 2}), "line 2");
    EXPECT_EQ(toString(ErrorPlace{Unit::Event, 3}), "event 3");
}

}  // namespace
}  // namespace kelvora::recording
