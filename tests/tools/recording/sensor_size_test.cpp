// SPDX-License-Identifier: MIT
#include "kelvora/recording/sensor_size.hpp"

#include <gtest/gtest.h>

namespace kelvora::recording {
namespace {

TEST(SensorSize, IsReadFromWidthAndHeight) {
    EXPECT_EQ(sensorSizeFromString("640x480"), (SensorSize{640, 480}));
    EXPECT_EQ(sensorSizeFromString("65536x1"), (SensorSize{65536, 1}));
}

TEST(SensorSize, IsNotReadFromAnythingElse) {
    for (const char* text : {"", "x", "640", "640x", "x480", "640x480x3", "640 x 480", "640X480",
                             "-640x480", "0x480", "640x0", "65537x1", "1x65537", "99999999999x1"}) {
        EXPECT_FALSE(sensorSizeFromString(text)) << text;
    }
}

TEST(SensorSize, IsEqualIfBothSidesAre) {
    EXPECT_TRUE((SensorSize{640, 480}) == (SensorSize{640, 480}));
    EXPECT_TRUE((SensorSize{640, 480}) != (SensorSize{480, 640}));
    EXPECT_TRUE((SensorSize{640, 480}) != (SensorSize{640, 481}));
}

}  // namespace
}  // namespace kelvora::recording
