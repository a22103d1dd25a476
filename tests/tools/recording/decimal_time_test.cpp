// SPDX-License-Identifier: MIT
#include "recording/formats/text/decimal_time.hpp"

#include <gtest/gtest.h>

namespace kelvora::recording {
namespace {

TEST(DecimalTime, IsConvertedFromEachUnit) {
    EXPECT_EQ(microsecondsFromDecimal("12", TimeUnit::Seconds), 12'000'000U);
    EXPECT_EQ(microsecondsFromDecimal("12", TimeUnit::Milliseconds), 12'000U);
    EXPECT_EQ(microsecondsFromDecimal("12", TimeUnit::Microseconds), 12U);
    EXPECT_EQ(microsecondsFromDecimal("12000", TimeUnit::Nanoseconds), 12U);
    EXPECT_EQ(microsecondsFromDecimal("12.25", TimeUnit::Seconds), 12'250'000U);
    EXPECT_EQ(microsecondsFromDecimal("12.25", TimeUnit::Milliseconds), 12'250U);
}

TEST(DecimalTime, IsRoundedToTheNearestMicrosecond) {
    EXPECT_EQ(microsecondsFromDecimal("0.0000014999", TimeUnit::Seconds), 1U);
    EXPECT_EQ(microsecondsFromDecimal("0.0000015", TimeUnit::Seconds), 2U);
    EXPECT_EQ(microsecondsFromDecimal("0.9999999", TimeUnit::Seconds), 1'000'000U);
    EXPECT_EQ(microsecondsFromDecimal("1.4999", TimeUnit::Microseconds), 1U);
    EXPECT_EQ(microsecondsFromDecimal("1.5", TimeUnit::Microseconds), 2U);
    EXPECT_EQ(microsecondsFromDecimal("1499", TimeUnit::Nanoseconds), 1U);
    EXPECT_EQ(microsecondsFromDecimal("1499.99", TimeUnit::Nanoseconds), 1U);
    EXPECT_EQ(microsecondsFromDecimal("1500", TimeUnit::Nanoseconds), 2U);
}

// As a double, 1615211683.123456789 is ...123456717, and the largest of these times is not even
// exact to the second.
TEST(DecimalTime, LosesNothingToFloatingPoint) {
    EXPECT_EQ(microsecondsFromDecimal("1615211683.123456789", TimeUnit::Seconds),
              1615211683123457U);
    EXPECT_EQ(microsecondsFromDecimal("1615211683.1234565", TimeUnit::Seconds), 1615211683123457U);
    EXPECT_EQ(microsecondsFromDecimal("1615211683.12345649999999999", TimeUnit::Seconds),
              1615211683123456U);
    EXPECT_EQ(microsecondsFromDecimal("9223372036854.775806", TimeUnit::Seconds),
              9223372036854775806U);
}

TEST(DecimalTime, MayHaveAnExponent) {
    EXPECT_EQ(microsecondsFromDecimal("3.811e-03", TimeUnit::Seconds), 3811U);
    EXPECT_EQ(microsecondsFromDecimal("1.615211683123456e+09", TimeUnit::Seconds),
              1615211683123456U);
    EXPECT_EQ(microsecondsFromDecimal("25E2", TimeUnit::Nanoseconds), 3U);
    EXPECT_EQ(microsecondsFromDecimal("0e0", TimeUnit::Seconds), 0U);
}

TEST(DecimalTime, MayLackDigitsOnOneSideOfThePoint) {
    EXPECT_EQ(microsecondsFromDecimal(".5", TimeUnit::Seconds), 500'000U);
    EXPECT_EQ(microsecondsFromDecimal("5.", TimeUnit::Seconds), 5'000'000U);
    EXPECT_FALSE(microsecondsFromDecimal(".", TimeUnit::Seconds));
}

TEST(DecimalTime, IsOnlyANumber) {
    for (const char* text : {"", "-1", "-0.5", "nan", "inf", "-inf", "1x", "1.5.2", "0x10", "1,5",
                             "1e", "1e999", " 1", "+-1", "one"}) {
        EXPECT_FALSE(microsecondsFromDecimal(text, TimeUnit::Seconds)) << text;
    }
}

TEST(DecimalTime, EndsAtTheLatestTime) {
    EXPECT_EQ(microsecondsFromDecimal("9223372036854775807", TimeUnit::Microseconds),
              9223372036854775807U);
    EXPECT_FALSE(microsecondsFromDecimal("9223372036854775808", TimeUnit::Microseconds));
    EXPECT_FALSE(microsecondsFromDecimal("9223372036854775807.5", TimeUnit::Microseconds));
    EXPECT_FALSE(microsecondsFromDecimal("9223372036854.775808", TimeUnit::Seconds));
    EXPECT_FALSE(microsecondsFromDecimal("18446744073709551616", TimeUnit::Nanoseconds));
    EXPECT_FALSE(microsecondsFromDecimal("1e19", TimeUnit::Microseconds));
    EXPECT_FALSE(microsecondsFromDecimal("9.3e12", TimeUnit::Seconds));
}

}  // namespace
}  // namespace kelvora::recording
