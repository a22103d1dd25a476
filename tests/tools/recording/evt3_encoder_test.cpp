// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt3_encoder.hpp"

#include <gtest/gtest.h>

#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

std::string encode(const std::vector<Event2D>& events) {
    Evt3Encoder encoder("a.raw", {640, 480});
    std::string bytes;
    encoder.encode(events, bytes);
    return bytes;
}

TEST(Evt3Encoder, WritesTimeAndRowOnlyWhereTheyChange) {
    EXPECT_EQ(encode({eventAt(0, 1, 2, 0), eventAt(0, 9, 2, 1), eventAt(5, 3, 2, 0),
                      eventAt(5, 3, 4, 0)}),
              words16({0x8000, 0x6000, 0x0002, 0x2001, 0x2809, 0x6005, 0x2003, 0x0004, 0x2003}));
}

TEST(Evt3Encoder, PacksNeighboursIntoVectors) {
    std::vector<Event2D> events;
    for (const int x : {10, 11, 13, 21, 22, 24}) {
        events.push_back(eventAt(0, x, 2, 1));
    }
    EXPECT_EQ(encode(events), words16({0x8000, 0x6000, 0x0002, 0x380A, 0x480B, 0x4005}));
}

TEST(Evt3Encoder, WritesFewOrScatteredEventsOneByOne) {
    EXPECT_EQ(encode({eventAt(0, 10, 2, 1), eventAt(0, 11, 2, 1)}),
              words16({0x8000, 0x6000, 0x0002, 0x280A, 0x280B}));
    EXPECT_EQ(encode({eventAt(0, 10, 2, 1), eventAt(0, 110, 2, 1), eventAt(0, 210, 2, 1)}),
              words16({0x8000, 0x6000, 0x0002, 0x280A, 0x286E, 0x28D2}));
}

TEST(Evt3Encoder, KeepsTheOrderOfColumnsThatDescend) {
    EXPECT_EQ(encode({eventAt(0, 12, 2, 0), eventAt(0, 11, 2, 0), eventAt(0, 10, 2, 0),
                      eventAt(0, 10, 2, 0)}),
              words16({0x8000, 0x6000, 0x0002, 0x200C, 0x200B, 0x200A, 0x200A}));
}

TEST(Evt3Encoder, WritesALongPauseInSteps) {
    EXPECT_EQ(
        encode({eventAt(0, 1, 2, 0), eventAt(0x1000000, 1, 2, 0)}),
        words16({0x8000, 0x6000, 0x0002, 0x2001, 0x8400, 0x8800, 0x8C00, 0x8000, 0x6000, 0x2001}));
}

}  // namespace
}  // namespace kelvora::recording
