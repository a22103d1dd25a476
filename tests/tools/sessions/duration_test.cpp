// SPDX-License-Identifier: MIT
#include "sessions/duration.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace kelvora::tool {
namespace {

std::uint64_t microseconds(const std::string& text) {
    return durationFromString(text).microseconds;
}

std::string errorOf(const std::string& text) {
    try {
        durationFromString(text);
    } catch (const std::invalid_argument& error) {
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

TEST(Duration, IsRefusedIfItIsNotANumberOrOutOfRange) {
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

}  // namespace
}  // namespace kelvora::tool
