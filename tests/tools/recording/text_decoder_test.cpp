// SPDX-License-Identifier: MIT
#include "recording/formats/text/text_decoder.hpp"

#include <gmock/gmock.h>

#include "recording/formats/text/text_fields.hpp"
#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

Outcome decodeText(Bytes text, const TextLayout& layout = {}) {
    TextDecoder decoder("a.txt", layout, 0);
    return decode(decoder, text);
}

TEST(TextDecoder, ReadsTimeColumnRowAndPolarity) {
    EXPECT_THAT(decodeText("17 2 3 0\n18 65535 0 1\n").events,
                ElementsAre(eventAt(17, 2, 3, 0), eventAt(18, 65535, 0, 1)));
}

TEST(TextDecoder, AcceptsAllSeparatorsAndLineEndings) {
    EXPECT_THAT(
        decodeText("1,2,3,0\r\n1;2;3;0\n1\t2\t3\t0\n  1 , 2 ;3   0  \r\n1,2,3,0,\n1 2 3 0").events,
        ElementsAre(eventAt(1, 2, 3, 0), eventAt(1, 2, 3, 0), eventAt(1, 2, 3, 0),
                    eventAt(1, 2, 3, 0), eventAt(1, 2, 3, 0), eventAt(1, 2, 3, 0)));
}

TEST(TextDecoder, SkipsCommentsAndBlankLines) {
    EXPECT_THAT(decodeText("1 2 3 0\n# 4 5 6 1\n\n   \r\n7 8 9 1\n#").events,
                ElementsAre(eventAt(1, 2, 3, 0), eventAt(7, 8, 9, 1)));
}

TEST(TextDecoder, FollowsTheOrderOfTheColumns) {
    TextLayout layout;
    layout.columns = textColumnsFromString("xypt");
    EXPECT_THAT(decodeText("215,302,0,3\n", layout).events, ElementsAre(eventAt(3, 215, 302, 0)));
}

TEST(TextDecoder, ReadsTimesWithAPointAsSecondsAndOthersAsMicroseconds) {
    EXPECT_THAT(decodeText("0.25 2 3 0\n1 2 3 0\n").events,
                ElementsAre(eventAt(250'000, 2, 3, 0), eventAt(1'000'000, 2, 3, 0)));
    EXPECT_THAT(decodeText("25e-2 2 3 0\n").events, ElementsAre(eventAt(250'000, 2, 3, 0)));
    EXPECT_THAT(decodeText("25 2 3 0\n").events, ElementsAre(eventAt(25, 2, 3, 0)));
}

TEST(TextDecoder, AsksForTheUnitIfItsAssumptionTurnsOutDoubtful) {
    const Outcome outcome = decodeText("1 2 3 0\n1.5 2 3 0\n");
    EXPECT_THAT(outcome.events, ElementsAre(eventAt(1, 2, 3, 0)));
    EXPECT_EQ(
        outcome.error,
        "a.txt: has the time '1.5' with a decimal point, but earlier times are whole numbers, "
        "line 2, give the unit with ReadOptions::text.time_unit");
}

TEST(TextDecoder, UsesTheGivenUnit) {
    TextLayout layout;
    layout.time_unit = TimeUnit::Microseconds;
    EXPECT_THAT(decodeText("1 2 3 0\n2.5 2 3 0\n", layout).events,
                ElementsAre(eventAt(1, 2, 3, 0), eventAt(3, 2, 3, 0)));
    layout.time_unit = TimeUnit::Milliseconds;
    EXPECT_THAT(decodeText("7 2 3 0\n", layout).events, ElementsAre(eventAt(7000, 2, 3, 0)));
}

TEST(TextDecoder, ReadsMinusOneAsPolarityZero) {
    EXPECT_THAT(decodeText("1 2 3 -1\n1 2 3 +1\n1 2 3 1.0\n1 2 3 -1.0\n").events,
                ElementsAre(eventAt(1, 2, 3, 0), eventAt(1, 2, 3, 1), eventAt(1, 2, 3, 1),
                            eventAt(1, 2, 3, 0)));
}

TEST(TextDecoder, AcceptsWholeNumbersWrittenAsDecimals) {
    EXPECT_THAT(decodeText("3.811e-03 9.600000000000000000e+01 133.000 1.0e+00\n").events,
                ElementsAre(eventAt(3811, 96, 133, 1)));
}

TEST(TextDecoder, GivesTheEventsBeforeADefect) {
    const Outcome outcome = decodeText("1 2 3 0\n2 2 3 0\n3 2 3 7\n4 2 3 0\n");
    EXPECT_THAT(outcome.events, ElementsAre(eventAt(1, 2, 3, 0), eventAt(2, 2, 3, 0)));
    EXPECT_EQ(outcome.error,
              "a.txt: has the polarity '7' instead of 0, 1 or -1, line 3, give the order of the "
              "columns with ReadOptions::text.columns");
}

TEST(TextDecoder, CountsTheLinesOfTheHeader) {
    TextDecoder decoder("a.txt", {}, 40);
    EXPECT_THAT(decode(decoder, "1 2 3 0\nbad\n").error, HasSubstr(", line 42, "));
}

TEST(TextDecoder, RefusesTooFewAndTooManyColumns) {
    EXPECT_THAT(decodeText("1 2 3\n").error, HasSubstr("has fewer than 4 columns, line 1"));
    EXPECT_THAT(decodeText("1").error, HasSubstr("has fewer than 4 columns, line 1"));
    EXPECT_THAT(decodeText("1 2 3 0 5\n").error, HasSubstr("has more than 4 columns, line 1"));
    EXPECT_THAT(decodeText("1,,2,3,0\n").error, HasSubstr("x = ''"));
}

TEST(TextDecoder, RefusesInvalidTimes) {
    for (const std::string time : {"-1", "nan", "inf", "1e300", "x", "99999999999999999999"}) {
        const Outcome outcome = decodeText(time + " 2 3 0\n");
        EXPECT_THAT(outcome.events, IsEmpty());
        EXPECT_THAT(outcome.error, HasSubstr("has the time '" + time + "', which is negative"))
            << time;
    }
}

TEST(TextDecoder, RefusesInvalidCoordinates) {
    for (const std::string x :
         {"-1", "65536", "2.5", "nan", "inf", "1e99", "+-3", "x", "2x", "4294967298"}) {
        const Outcome outcome = decodeText("1 " + x + " 3 0\n");
        EXPECT_THAT(outcome.events, IsEmpty());
        EXPECT_THAT(outcome.error, HasSubstr("has x = '" + x + "', which is not a whole number"))
            << x;
        EXPECT_THAT(decodeText("1 3 " + x + " 0\n").error, HasSubstr("has y = '" + x + "'"));
    }
}

TEST(TextDecoder, RefusesLinesThatAreTooLongForText) {
    const std::string longest = "1 2 3 0" + std::string(kMaxTextLine - 7, ' ');
    EXPECT_THAT(decodeText(longest + "\n").events, ElementsAre(eventAt(1, 2, 3, 0)));
    EXPECT_THAT(decodeText(longest).events, ElementsAre(eventAt(1, 2, 3, 0)));
    EXPECT_THAT(decodeText("1 2 3 0\n" + longest + " \n").error,
                HasSubstr("has a line of more than 4096 characters, line 2"));
    EXPECT_THAT(decodeText("1 2 3 0\n" + longest + " ").error, HasSubstr("line 2"));
}

TEST(TextDecoder, QuotesBinaryJunkInOneShortPrintableLine) {
    const Outcome outcome = decodeText("1 \x01\x7F\xFF" + std::string(300, 'a') + " 3 0\n");
    EXPECT_THAT(outcome.error, HasSubstr("'???aaaaaaaaaaaaaaaaaaaaa...'"));
}

TEST(TextDecoder, GivesTheSameEventsForBytesCutAnywhere) {
    const std::string text = "0.001 2 3 0\r\n# comment\n0.002,4,5,1\n\n0.003 6 7 -1";
    const std::vector<Event2D> expected = decodeText(text).events;
    ASSERT_EQ(expected.size(), 3U);
    for (std::size_t cut = 0; cut <= text.size(); ++cut) {
        TextDecoder decoder("a.txt", {}, 0);
        EXPECT_EQ(decode(decoder, text, cut).events, expected) << cut;
    }
}

}  // namespace
}  // namespace kelvora::recording
