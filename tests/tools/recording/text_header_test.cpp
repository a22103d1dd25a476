// SPDX-License-Identifier: MIT
#include "recording/formats/text/text_header.hpp"

#include <gmock/gmock.h>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

using ::testing::HasSubstr;

const TextColumns kXypt = {TextColumn::X, TextColumn::Y, TextColumn::Polarity, TextColumn::Time};

TextHeader parse(Bytes bytes, const TextLayout& given = {}) {
    return parseTextHeader(bytes, given, "a.txt");
}

std::string errorOf(Bytes bytes) {
    try {
        parse(bytes);
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "";
}

TEST(TextHeader, MayBeMissing) {
    const TextHeader header = parse("1 2 3 0\n");
    EXPECT_EQ(header.length, 0U);
    EXPECT_EQ(header.lines, 0U);
    EXPECT_FALSE(header.sensor_size);
    EXPECT_FALSE(header.layout.columns);
}

TEST(TextHeader, SkipsCommentsAndBlankLines) {
    const TextHeader header = parse("# a comment\n\n  \t\r\n  # another\n1 2 3 0\n");
    EXPECT_EQ(header.lines, 4U);
    EXPECT_EQ(header.length, 30U);
}

TEST(TextHeader, StatesTheSensorSizeInTwoWholeNumbers) {
    EXPECT_EQ(parse("240 180\n1 2 3 0\n").sensor_size, (SensorSize{240, 180}));
    EXPECT_EQ(parse("240,180\r\n").sensor_size, (SensorSize{240, 180}));
    EXPECT_EQ(parse("240 180").sensor_size, (SensorSize{240, 180}));
}

TEST(TextHeader, RefusesAnInvalidSensorSize) {
    EXPECT_EQ(errorOf("# size\n0 180\n"),
              "a.txt: states the invalid sensor size 0 x 180, line 2, correct the line: width and "
              "height in pixels");
}

TEST(TextHeader, StatesTheOrderOfTheColumnsByTheirNames) {
    EXPECT_EQ(parse("x,y,p,t\n").layout.columns, kXypt);
    EXPECT_EQ(parse("X;Y;Polarity;Timestamp\r\n").layout.columns, kXypt);
    EXPECT_EQ(parse("x y on ts\n").layout.columns, kXypt);
    EXPECT_EQ(parse("x\ty\tpol\ttime\n").layout.columns, kXypt);
    EXPECT_EQ(parse("# x y p t\n1 2 0 3\n").layout.columns, kXypt);
    EXPECT_EQ(parse("\xEF\xBB\xBFx,y,p,t\n").layout.columns, kXypt);
    EXPECT_EQ(parse("640 480\nx,y,p,t\n").layout.columns, kXypt);
}

TEST(TextHeader, StatesTheUnitOfTimeInTheNameOfTheColumn) {
    EXPECT_EQ(parse("x,y,p,t_ns\n").layout.time_unit, TimeUnit::Nanoseconds);
    EXPECT_EQ(parse("timestamp_s x y p\n").layout.time_unit, TimeUnit::Seconds);
    EXPECT_FALSE(parse("x,y,p,t\n").layout.time_unit);
    EXPECT_THAT(errorOf("x,y,p,t_days\n"), HasSubstr("line 1"));
    EXPECT_THAT(errorOf("x_ms,y,p,t\n"), HasSubstr("line 1"));
}

TEST(TextHeader, IsOverriddenByTheGivenLayout) {
    TextLayout given;
    given.columns = kDefaultTextColumns;
    given.time_unit = TimeUnit::Milliseconds;
    EXPECT_EQ(parse("x,y,p,t_us\n", given).layout.columns, kDefaultTextColumns);
    EXPECT_EQ(parse("x,y,p,t_us\n", given).layout.time_unit, TimeUnit::Milliseconds);
    EXPECT_EQ(parse("col0,col1,col2,col3\n1 2 3 0\n", given).lines, 1U);
}

TEST(TextHeader, RefusesNamesItDoesNotKnow) {
    EXPECT_EQ(errorOf("a,b,c,d\n"),
              "a.txt: names columns other than t, x, y and p, line 1, correct the line or give the "
              "order of the columns with ReadOptions::text.columns");
    EXPECT_THAT(errorOf("x,y,p,p\n"), HasSubstr("line 1"));
    EXPECT_THAT(errorOf("x,y,t\n"), HasSubstr("line 1"));
}

TEST(TextHeader, IgnoresCommentsThatNameNoColumns) {
    EXPECT_FALSE(parse("# recorded by x\n# x y\n#\n1 2 3 0\n").layout.columns);
}

}  // namespace
}  // namespace kelvora::recording
