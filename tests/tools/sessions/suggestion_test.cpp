// SPDX-License-Identifier: MIT
#include "sessions/suggestion.hpp"

#include <gtest/gtest.h>

namespace kelvora::tool {
namespace {

TEST(EditDistance, CountsInsertedDeletedAndReplacedLetters) {
    EXPECT_EQ(editDistance("", ""), 0U);
    EXPECT_EQ(editDistance("", "abc"), 3U);
    EXPECT_EQ(editDistance("abc", ""), 3U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
    EXPECT_EQ(editDistance("sitting", "kitten"), 3U);
    EXPECT_EQ(editDistance("grid", "gird"), 2U);
}

TEST(ClosestWord, IsFoundIfAtMostAThirdOfTheLettersDiffers) {
    EXPECT_EQ(closestWord("clutser", {"info", "cluster"}), "cluster");
    EXPECT_EQ(closestWord("clutser", {"info", "score"}), std::nullopt);
    EXPECT_EQ(closestWord("clutser", {}), std::nullopt);
}

TEST(SuggestionFor, EndsAMessageOrIsEmpty) {
    EXPECT_EQ(suggestionFor("esp", {"eps"}), "");
    EXPECT_EQ(suggestionFor("epss", {"eps"}), "; did you mean eps?");
}

}  // namespace
}  // namespace kelvora::tool
