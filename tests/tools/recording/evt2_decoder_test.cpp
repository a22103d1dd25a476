// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt2_decoder.hpp"

#include <gmock/gmock.h>

#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::uint32_t timeHigh(std::uint32_t high) {
    return 0x80000000 | high;
}

std::uint32_t event(std::uint32_t polarity, std::uint32_t time_low, std::uint32_t x,
                    std::uint32_t y) {
    return polarity << 28 | time_low << 22 | x << 11 | y;
}

std::vector<Event2D> decodeWords(const std::vector<std::uint32_t>& words) {
    Evt2Decoder decoder("a.raw", 0);
    return decode(decoder, words32(words)).events;
}

TEST(Evt2Decoder, PutsTimesTogetherFromTwoParts) {
    EXPECT_THAT(decodeWords({timeHigh(1), event(1, 2, 3, 4), event(0, 63, 2047, 2046)}),
                ElementsAre(eventAt(66, 3, 4, 1), eventAt(127, 2047, 2046, 0)));
}

TEST(Evt2Decoder, ReadsLittleEndianWords) {
    Evt2Decoder decoder("a.raw", 0);
    const std::string bytes = {'\xD0', '\xD8', '\xD9', '\x80', '\xBB', '\x19', '\x01', '\x10'};
    EXPECT_THAT(decode(decoder, bytes).events, ElementsAre(eventAt(913716224, 35, 443, 1)));
}

TEST(Evt2Decoder, ContinuesTimesWhenTheHighPartWrapsAround) {
    EXPECT_THAT(
        decodeWords({timeHigh(0xFFFFFFF), event(1, 63, 1, 1), timeHigh(0), event(1, 0, 1, 1),
                     timeHigh(0xFFFFFFF), timeHigh(5), event(1, 0, 1, 1)}),
        ElementsAre(eventAt(0x3FFFFFFFF, 1, 1, 1), eventAt(0x400000000, 1, 1, 1),
                    eventAt(0x800000000 + 320, 1, 1, 1)));
}

TEST(Evt2Decoder, GivesTimesThatGoBackALittleAsTheyAre) {
    EXPECT_THAT(
        decodeWords(
            {timeHigh(100), event(1, 5, 1, 1), event(1, 4, 1, 1), timeHigh(99), event(1, 0, 1, 1)}),
        ElementsAre(eventAt(6405, 1, 1, 1), eventAt(6404, 1, 1, 1), eventAt(6336, 1, 1, 1)));
}

TEST(Evt2Decoder, IgnoresTriggersAndOtherDataOfTheSensor) {
    Evt2Decoder decoder("a.raw", 0);
    const std::string bytes =
        words32({timeHigh(0), 0xA0000001, 0xE0000001, 0xF0000001, event(1, 0, 1, 1)});
    EXPECT_THAT(decode(decoder, bytes).events, ElementsAre(eventAt(0, 1, 1, 1)));
    EXPECT_EQ(decoder.skippedWords(), 0U);
}

TEST(Evt2Decoder, SkipsAndCountsWordsOfUnknownType) {
    Evt2Decoder decoder("a.raw", 0);
    const std::string bytes = words32({timeHigh(0), 0x20000000, 0x70000000, 0x90000000, 0xB0000000,
                                       0xC0000000, 0xD0000000, event(1, 0, 1, 1)});
    EXPECT_THAT(decode(decoder, bytes).events, ElementsAre(eventAt(0, 1, 1, 1)));
    EXPECT_EQ(decoder.skippedWords(), 6U);
}

TEST(Evt2Decoder, SkipsAndCountsEventsBeforeTheFirstTime) {
    Evt2Decoder decoder("a.raw", 0);
    const std::string bytes = words32({event(1, 9, 9, 9), timeHigh(7), event(1, 0, 1, 1)});
    EXPECT_THAT(decode(decoder, bytes).events, ElementsAre(eventAt(448, 1, 1, 1)));
    EXPECT_EQ(decoder.skippedWords(), 1U);
}

TEST(Evt2Decoder, GivesTheEventsBeforeAnEndInsideAWord) {
    const std::string bytes = words32({timeHigh(0), event(1, 0, 1, 1), event(1, 0, 2, 2)});
    for (std::size_t size = 9; size < 12; ++size) {
        Evt2Decoder decoder("a.raw", 100);
        const Outcome outcome = decode(decoder, Bytes(bytes).substr(0, size));
        EXPECT_THAT(outcome.events, ElementsAre(eventAt(0, 1, 1, 1)));
        EXPECT_EQ(outcome.error, "a.raw: ends in the middle of a word, byte " +
                                     std::to_string(100 + size) +
                                     ", copy it again or cut it off after byte 108");
    }
}

TEST(Evt2Decoder, GivesTheSameEventsForBytesCutAnywhere) {
    const std::string bytes =
        words32({timeHigh(0), event(1, 0, 1, 1), timeHigh(1), event(0, 1, 2, 2)});
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        Evt2Decoder decoder("a.raw", 0);
        EXPECT_THAT(decode(decoder, bytes, cut).events,
                    ElementsAre(eventAt(0, 1, 1, 1), eventAt(65, 2, 2, 0)));
    }
}

TEST(Evt2Decoder, GivesNoEventsForNoBytes) {
    EXPECT_THAT(decodeWords({}), IsEmpty());
}

}  // namespace
}  // namespace kelvora::recording
