// SPDX-License-Identifier: MIT
#include "recording/coding/in_quotes.hpp"

#include <gtest/gtest.h>

namespace kelvora::recording {
namespace {

TEST(InQuotes, ShowsShortTextAsItIs) {
    EXPECT_EQ(inQuotes(""), "''");
    EXPECT_EQ(inQuotes("1.5 ~"), "'1.5 ~'");
    EXPECT_EQ(inQuotes(std::string(24, 'a')), "'" + std::string(24, 'a') + "'");
}

TEST(InQuotes, CutsLongText) {
    EXPECT_EQ(inQuotes(std::string(25, 'a')), "'" + std::string(24, 'a') + "...'");
}

TEST(InQuotes, ReplacesCharactersThatCannotBePrinted) {
    EXPECT_EQ(inQuotes("a\nb\x01\x7F"
                       "c\xFF"),
              std::string("'a?b") + "??" + "c?'");
}

}  // namespace
}  // namespace kelvora::recording
