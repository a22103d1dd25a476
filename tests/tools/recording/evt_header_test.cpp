// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt_header.hpp"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::recording {
namespace {

TEST(EvtHeader, ReturnsVersionAndGeometry) {
    const EvtHeader header = parseEvtHeader("% evt 3.0\n% geometry 640x480\n% end\n\x2D\x8B");
    EXPECT_EQ(header.evt_version, "3");
    EXPECT_EQ(header.sensor_size, (SensorSize{640, 480}));
    EXPECT_EQ(header.length, 35U);
}

TEST(EvtHeader, ReturnsVersionAndGeometryOfAFormatLine) {
    const EvtHeader header = parseEvtHeader("% format EVT3;height=480;width=640\n% end\n");
    EXPECT_EQ(header.evt_version, "3");
    EXPECT_EQ(header.sensor_size, (SensorSize{640, 480}));
}

TEST(EvtHeader, MayLackEndAndGeometry) {
    const EvtHeader header = parseEvtHeader("% system_ID 48\n% evt 2.0\n\x2D\x8B\x00\x60");
    EXPECT_EQ(header.evt_version, "2");
    EXPECT_FALSE(header.sensor_size);
    EXPECT_EQ(header.length, 25U);
}

TEST(EvtHeader, MayHaveLinesThatEndInCarriageReturns) {
    const EvtHeader header = parseEvtHeader("% evt 3.0\r\n% geometry 64x48\r\n% end\r\n");
    EXPECT_EQ(header.evt_version, "3");
    EXPECT_EQ(header.sensor_size, (SensorSize{64, 48}));
    EXPECT_EQ(header.length, 36U);
}

// Words may contain the byte 0x25, which is the percent sign.
TEST(EvtHeader, EndsBeforeWordsThatBeginLikeAHeaderLine) {
    const std::string header = "% evt 3.0\n";
    for (const std::string words :
         {"%", "%\n", "% ", "%\x21\n", "% \x01\n", "% abc\x80\n", "% abc"}) {
        EXPECT_EQ(parseEvtHeader(header + words).length, header.size()) << words;
    }
}

TEST(EvtHeader, EndsAfterItsEndLineRegardlessOfTheNextBytes) {
    const std::string header = "% evt 3.0\n% end\n";
    EXPECT_EQ(parseEvtHeader(header + "% evt 2.0\n").length, header.size());
    EXPECT_EQ(parseEvtHeader(header + "% evt 2.0\n").evt_version, "3");
}

TEST(EvtHeader, IgnoresInvalidGeometry) {
    EXPECT_FALSE(parseEvtHeader("% geometry big\n% format EVT3;height=480\n").sensor_size);
    EXPECT_FALSE(parseEvtHeader("% geometry 0x0\n% format\n% geometry\n").sensor_size);
}

TEST(EvtHeader, IsEmptyIfThereIsNone) {
    EXPECT_EQ(parseEvtHeader("").length, 0U);
    EXPECT_EQ(parseEvtHeader("\x2D\x8B").length, 0U);
}

TEST(EvtHeader, ReadsBackAWrittenHeader) {
    const EvtHeader header = parseEvtHeader(evtHeader(2, {1280, 720}));
    EXPECT_EQ(header.evt_version, "2");
    EXPECT_EQ(header.sensor_size, (SensorSize{1280, 720}));
    EXPECT_EQ(header.length, evtHeader(2, {1280, 720}).size());
}

}  // namespace
}  // namespace kelvora::recording
