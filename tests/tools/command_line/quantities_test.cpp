// SPDX-License-Identifier: MIT
#include "command_line/quantities.hpp"

#include <gtest/gtest.h>

#include <CLI/Error.hpp>
#include <string>

namespace kelvora::tool {
namespace {

TEST(Duration, IsReadAndRefusedAsAUsageError) {
    Duration duration;
    EXPECT_TRUE(lexical_cast("10ms", duration));
    EXPECT_EQ(duration.microseconds, 10'000U);
    EXPECT_THROW(lexical_cast("10", duration), CLI::ConversionError);
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
