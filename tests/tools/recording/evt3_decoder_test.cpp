// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt3_decoder.hpp"

#include <gmock/gmock.h>

#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::uint16_t kOn = 0x800;

std::uint16_t row(int y) {
    return static_cast<std::uint16_t>(y);
}
std::uint16_t single(int x) {
    return static_cast<std::uint16_t>(0x2000 | x);
}
std::uint16_t vectorBase(int x) {
    return static_cast<std::uint16_t>(0x3000 | x);
}
std::uint16_t vector12(int valid) {
    return static_cast<std::uint16_t>(0x4000 | valid);
}
std::uint16_t vector8(int valid) {
    return static_cast<std::uint16_t>(0x5000 | valid);
}
std::uint16_t timeLow(int low) {
    return static_cast<std::uint16_t>(0x6000 | low);
}
std::uint16_t timeHigh(int high) {
    return static_cast<std::uint16_t>(0x8000 | high);
}

std::vector<Event2D> decodeWords(const std::vector<std::uint16_t>& words) {
    Evt3Decoder decoder("a.raw", 0);
    return decode(decoder, words16(words)).events;
}

TEST(Evt3Decoder, PutsEventsTogetherFromTimeRowAndColumn) {
    EXPECT_THAT(decodeWords({timeHigh(1), timeLow(2), row(3), single(4 | kOn), single(5), row(2047),
                             single(2047), timeLow(9), single(6)}),
                ElementsAre(eventAt(4098, 4, 3, 1), eventAt(4098, 5, 3, 0),
                            eventAt(4098, 2047, 2047, 0), eventAt(4105, 6, 2047, 0)));
}

TEST(Evt3Decoder, UnpacksVectors) {
    EXPECT_THAT(decodeWords({timeHigh(0), timeLow(0), row(7), vectorBase(100 | kOn),
                             vector12(0x801), vector12(0x002), vector8(0x81), vector8(0x01)}),
                ElementsAre(eventAt(0, 100, 7, 1), eventAt(0, 111, 7, 1), eventAt(0, 113, 7, 1),
                            eventAt(0, 124, 7, 1), eventAt(0, 131, 7, 1), eventAt(0, 132, 7, 1)));
}

TEST(Evt3Decoder, IgnoresTheUnusedBitsOfRowsAndShortVectors) {
    EXPECT_THAT(decodeWords({timeHigh(0), row(0x803), single(1), vectorBase(4), vector8(0xF01)}),
                ElementsAre(eventAt(0, 1, 3, 0), eventAt(0, 4, 3, 0)));
}

TEST(Evt3Decoder, KeepsThePolaritiesOfVectorsAndSingleEventsApart) {
    EXPECT_THAT(decodeWords({timeHigh(0), row(0), vectorBase(10 | kOn), single(1), vector8(1)}),
                ElementsAre(eventAt(0, 1, 0, 0), eventAt(0, 10, 0, 1)));
}

TEST(Evt3Decoder, ContinuesTimesWhenTheyWrapAround) {
    EXPECT_THAT(
        decodeWords({row(0), timeHigh(0xFFF), timeLow(0xFFF), single(1), timeHigh(0), timeLow(0),
                     single(1), timeHigh(0xF00), timeHigh(3), timeLow(1), single(1)}),
        ElementsAre(eventAt(0xFFFFFF, 1, 0, 0), eventAt(0x1000000, 1, 0, 0),
                    eventAt(0x2003001, 1, 0, 0)));
}

TEST(Evt3Decoder, GivesTimesThatGoBackALittleAsTheyAre) {
    EXPECT_THAT(
        decodeWords({row(0), timeHigh(9), timeLow(100), single(1), timeLow(90), single(1),
                     timeHigh(8), timeLow(0), single(1)}),
        ElementsAre(eventAt(36964, 1, 0, 0), eventAt(36954, 1, 0, 0), eventAt(32768, 1, 0, 0)));
}

TEST(Evt3Decoder, StartsANewHighPartAtItsFirstMicrosecond) {
    EXPECT_THAT(decodeWords({row(0), timeHigh(1), timeLow(4000), timeHigh(2), single(1)}),
                ElementsAre(eventAt(8192, 1, 0, 0)));
}

TEST(Evt3Decoder, KeepsTheLowPartWhereTheHighPartIsRepeated) {
    EXPECT_THAT(decodeWords({row(0), timeHigh(1), timeLow(4), timeHigh(1), single(1)}),
                ElementsAre(eventAt(4100, 1, 0, 0)));
}

TEST(Evt3Decoder, IgnoresTriggersAndOtherDataOfTheSensor) {
    Evt3Decoder decoder("a.raw", 0);
    const std::string bytes =
        words16({timeHigh(0), row(0), 0xA001, 0xE001, 0x7001, 0xF001, single(1)});
    EXPECT_THAT(decode(decoder, bytes).events, ElementsAre(eventAt(0, 1, 0, 0)));
    EXPECT_EQ(decoder.skippedWords(), 0U);
}

TEST(Evt3Decoder, SkipsAndCountsWordsOfUnknownType) {
    Evt3Decoder decoder("a.raw", 0);
    const std::string bytes =
        words16({timeHigh(0), row(0), 0x1000, 0x9000, 0xB000, 0xC000, 0xD000, single(1)});
    EXPECT_THAT(decode(decoder, bytes).events, ElementsAre(eventAt(0, 1, 0, 0)));
    EXPECT_EQ(decoder.skippedWords(), 5U);
}

TEST(Evt3Decoder, SkipsAndCountsEventsBeforeTheFirstTimeRowAndColumn) {
    Evt3Decoder decoder("a.raw", 0);
    const std::string bytes =
        words16({row(5), timeLow(6), single(9), timeHigh(1), vector12(1), single(1)});
    EXPECT_THAT(decode(decoder, bytes).events, ElementsAre(eventAt(4096, 1, 5, 0)));
    EXPECT_EQ(decoder.skippedWords(), 2U);

    Evt3Decoder other("a.raw", 0);
    const std::string rowless = words16({timeHigh(1), single(9), row(5), single(1)});
    EXPECT_THAT(decode(other, rowless).events, ElementsAre(eventAt(4096, 1, 5, 0)));
    EXPECT_EQ(other.skippedWords(), 1U);
}

TEST(Evt3Decoder, SkipsAndCountsVectorsRightOfTheLastColumn) {
    Evt3Decoder decoder("a.raw", 0);
    std::vector<std::uint16_t> words = {timeHigh(0), row(0), vectorBase(2047)};
    words.insert(words.end(), 100'000, vector12(1));
    EXPECT_THAT(decode(decoder, words16(words)).events, ElementsAre(eventAt(0, 2047, 0, 0)));
    EXPECT_EQ(decoder.skippedWords(), 99'999U);
}

TEST(Evt3Decoder, GivesTheEventsBeforeAnEndInsideAWord) {
    Evt3Decoder decoder("a.raw", 10);
    const std::string bytes = words16({timeHigh(0), row(0), single(1)}) + "x";
    const Outcome outcome = decode(decoder, bytes);
    EXPECT_THAT(outcome.events, ElementsAre(eventAt(0, 1, 0, 0)));
    EXPECT_EQ(
        outcome.error,
        "a.raw: ends in the middle of a word, byte 17, copy it again or cut it off after byte 16");
}

TEST(Evt3Decoder, GivesTheSameEventsForBytesCutAnywhere) {
    const std::string bytes =
        words16({timeHigh(1), timeLow(2), row(3), single(4 | kOn), vectorBase(8), vector12(3),
                 vector8(1), timeHigh(2), single(5)});
    const std::vector<Event2D> expected = {eventAt(4098, 4, 3, 1), eventAt(4098, 8, 3, 0),
                                           eventAt(4098, 9, 3, 0), eventAt(4098, 20, 3, 0),
                                           eventAt(8192, 5, 3, 0)};
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        Evt3Decoder decoder("a.raw", 0);
        EXPECT_EQ(decode(decoder, bytes, cut).events, expected) << cut;
    }
}

TEST(Evt3Decoder, BoundsItsChunks) {
    std::vector<std::uint16_t> words = {timeHigh(0), row(0)};
    for (int i = 0; i < 2000; ++i) {
        words.insert(words.end(), {vectorBase(0), vector12(0xFFF)});
    }
    Evt3Decoder decoder("a.raw", 0);
    std::vector<Event2D> events;
    decoder.decode(words16(words), events);
    EXPECT_LE(events.size(), kMaxEventsPerChunk);
    EXPECT_EQ(decodeWords(words).size(), 24'000U);
}

TEST(Evt3Decoder, GivesNoEventsForNoBytes) {
    EXPECT_THAT(decodeWords({}), IsEmpty());
}

}  // namespace
}  // namespace kelvora::recording
