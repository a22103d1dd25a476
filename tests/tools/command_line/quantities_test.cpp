// SPDX-License-Identifier: MIT
#include "command_line/quantities.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/Error.hpp>
#include <string>

namespace kelvora::tool {
namespace {

std::uint64_t microseconds(const std::string& text) {
    Duration duration;
    EXPECT_TRUE(lexical_cast(text, duration));
    return duration.microseconds;
}

std::string errorOf(const std::string& text) {
    Duration duration;
    try {
        lexical_cast(text, duration);
    } catch (const CLI::ConversionError& error) {
        return error.what();
    }
    return "no error";
}

TEST(Duration, IsReadWithEachUnit) {
    EXPECT_EQ(microseconds("250us"), 250U);
    EXPECT_EQ(microseconds("10ms"), 10'000U);
    EXPECT_EQ(microseconds("2s"), 2'000'000U);
}

TEST(Duration, MayHaveAFraction) {
    EXPECT_EQ(microseconds("1.5s"), 1'500'000U);
    EXPECT_EQ(microseconds("0.0000014s"), 1U);
}

TEST(Duration, KeepsEveryMicrosecondOfLongTimes) {
    EXPECT_EQ(microseconds("123456789us"), 123'456'789U);
    EXPECT_EQ(microseconds("1615211683.123457s"), 1'615'211'683'123'457U);
}

TEST(Duration, IsRefusedWithoutUnitNamingTheUnits) {
    EXPECT_THAT(errorOf("10"), testing::HasSubstr("us, ms or s"));
    EXPECT_THAT(errorOf("10min"), testing::HasSubstr("us, ms or s"));
    EXPECT_THAT(errorOf("10 ms"), testing::HasSubstr("us, ms or s"));
}

TEST(Duration, IsRefusedIfItIsNoNumberOrOutOfRange) {
    EXPECT_THAT(errorOf(""), testing::HasSubstr("not a time"));
    EXPECT_THAT(errorOf("ms"), testing::HasSubstr("not a time"));
    EXPECT_THAT(errorOf("-1ms"), testing::HasSubstr("negative"));
    EXPECT_THAT(errorOf("1e30s"), testing::HasSubstr("too long"));
    EXPECT_THAT(errorOf("nans"), testing::HasSubstr("too long"));
}

TEST(Duration, IsWrittenWithTheLargestUnitThatFits) {
    EXPECT_EQ(toString(Duration{2'000'000}), "2s");
    EXPECT_EQ(toString(Duration{10'000}), "10ms");
    EXPECT_EQ(toString(Duration{10'001}), "10001us");
}

TEST(SensorSize, IsReadAsWidthByHeight) {
    recording::SensorSize size{};
    EXPECT_TRUE(recording::lexical_cast("640x480", size));
    EXPECT_EQ(size, (recording::SensorSize{640, 480}));
}

TEST(SensorSize, IsRefusedIfItIsNotOne) {
    recording::SensorSize size{};
    for (const char* text :
         {"", "640", "640x", "x480", "0x480", "640x-1", "99999x480", "640x480x3"}) {
        EXPECT_THROW(recording::lexical_cast(text, size), CLI::ConversionError) << text;
    }
}

}  // namespace
}  // namespace kelvora::tool
