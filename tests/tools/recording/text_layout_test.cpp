// SPDX-License-Identifier: MIT
#include "kelvora/recording/text_layout.hpp"

#include <gtest/gtest.h>

namespace kelvora::recording {
namespace {

TEST(TextLayout, ReadsTheOrderOfColumns) {
    const TextColumns expected = {TextColumn::X, TextColumn::Y, TextColumn::Polarity,
                                  TextColumn::Time};
    EXPECT_EQ(textColumnsFromString("xypt"), expected);
    EXPECT_EQ(textColumnsFromString("x,y,p,t"), expected);
    EXPECT_EQ(textColumnsFromString("x y p t"), expected);
    EXPECT_EQ(textColumnsFromString("txyp"), kDefaultTextColumns);
}

TEST(TextLayout, RefusesOrdersThatLackOrRepeatAColumn) {
    for (const char* text : {"", "txy", "txyy", "txypp", "txypt", "abcd", "TXYP"}) {
        EXPECT_FALSE(textColumnsFromString(text)) << text;
    }
}

TEST(TextLayout, ReadsUnitsOfTime) {
    EXPECT_EQ(timeUnitFromString("s"), TimeUnit::Seconds);
    EXPECT_EQ(timeUnitFromString("ms"), TimeUnit::Milliseconds);
    EXPECT_EQ(timeUnitFromString("us"), TimeUnit::Microseconds);
    EXPECT_EQ(timeUnitFromString("ns"), TimeUnit::Nanoseconds);
    EXPECT_FALSE(timeUnitFromString("min"));
    EXPECT_FALSE(timeUnitFromString(""));
}

}  // namespace
}  // namespace kelvora::recording
