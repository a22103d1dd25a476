// SPDX-License-Identifier: MIT
#include "kelvora/recording/recording_error.hpp"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::recording {
namespace {

TEST(RecordingError, IsOneLineThatNamesFileProblemPlaceAndRemedy) {
    EXPECT_STREQ(RecordingError("a.raw", "is cut off", "byte 12", "copy it again").what(),
                 "a.raw: is cut off, byte 12, copy it again");
    EXPECT_STREQ(RecordingError("a.raw", "is empty", "", "record it again").what(),
                 "a.raw: is empty, record it again");
}

TEST(RecordingError, GivesItsPartsAlsoAsACopy) {
    const RecordingError error("a.raw", "is cut off", "byte 12", "copy it again");
    const RecordingError copy = error;  // NOLINT(performance-unnecessary-copy-initialization)
    EXPECT_EQ(copy.file(), "a.raw");
    EXPECT_EQ(copy.problem(), "is cut off");
    EXPECT_EQ(copy.where(), "byte 12");
    EXPECT_EQ(copy.remedy(), "copy it again");
}

TEST(InQuotes, ShowsShortTextAsItIs) {
    EXPECT_EQ(inQuotes(""), "''");
    EXPECT_EQ(inQuotes("1.5 ~"), "'1.5 ~'");
    EXPECT_EQ(inQuotes(std::string(24, 'a')), "'" + std::string(24, 'a') + "'");
}

TEST(InQuotes, CutsLongText) {
    EXPECT_EQ(inQuotes(std::string(25, 'a')), "'" + std::string(24, 'a') + "...'");
}

TEST(InQuotes, HidesWhatWouldBreakTheLine) {
    EXPECT_EQ(inQuotes("a\nb\x01\x7F"
                       "c\xFF"),
              std::string("'a?b") + "??" + "c?'");
}

}  // namespace
}  // namespace kelvora::recording
