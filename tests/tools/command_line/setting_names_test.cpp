// SPDX-License-Identifier: MIT
#include "command_line/setting_names.hpp"

#include <gtest/gtest.h>

namespace kelvora::tool {
namespace {

using recording::Setting;

TEST(OptionOf, NamesTheOptionOfEachSetting) {
    EXPECT_EQ(optionOf(Setting::Format), "--input-format");
    EXPECT_EQ(optionOf(Setting::SensorSize), "--sensor WIDTHxHEIGHT");
    EXPECT_EQ(optionOf(Setting::Columns), "--columns");
    EXPECT_EQ(optionOf(Setting::TimeUnit), "--time-unit");
    EXPECT_EQ(optionOf(Setting::None), "");
}

}  // namespace
}  // namespace kelvora::tool
