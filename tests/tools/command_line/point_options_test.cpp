// SPDX-License-Identifier: MIT
#include "command_line/point_options.hpp"

#include <gtest/gtest.h>

namespace kelvora::tool {
namespace {

TEST(PointOptions, TakeTheTimeScaleFromEitherForm) {
    PointOptions options;
    EXPECT_FLOAT_EQ(options.scales().time, 0.001F);
    options.us_per_pixel = 500;
    EXPECT_FLOAT_EQ(options.scales().time, 0.002F);
    options.scale_time = 0.5F;
    EXPECT_FLOAT_EQ(options.scales().time, 0.5F);
}

TEST(PointOptions, DoNotBoundTheTimeUnlessAsked) {
    PointOptions options;
    EXPECT_EQ(options.timeLength(), ~0ULL);
    options.time_length = Duration{5000};
    EXPECT_EQ(options.timeLength(), 5000U);
}

}  // namespace
}  // namespace kelvora::tool
