// SPDX-License-Identifier: MIT
#include "command_line/number_checks.hpp"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::tool {
namespace {

/// The message of a check for a value; empty if the value is valid.
std::string verdict(const CLI::Validator& check, std::string text) {
    return check(text);
}

TEST(NumberChecks, LetFiniteNumbersThrough) {
    for (const char* text : {"1", "0.001", "1e30"}) {
        EXPECT_EQ(verdict(isPositive(), text), "") << text;
        EXPECT_EQ(verdict(isNotNegative(), text), "") << text;
    }
    EXPECT_EQ(verdict(isNotNegative(), "0"), "");
}

TEST(NumberChecks, RefuseNumbersThatAreTooSmall) {
    EXPECT_EQ(verdict(isPositive(), "0"), "must be a number larger than 0, not '0'");
    EXPECT_EQ(verdict(isNotNegative(), "-1"), "must be a number of at least 0, not '-1'");
}

TEST(NumberChecks, RefuseWhatIsNoFiniteNumber) {
    for (const char* text : {"nan", "inf", "-inf", "1e999", "many", "", "5px"}) {
        EXPECT_NE(verdict(isPositive(), text), "") << text;
        EXPECT_NE(verdict(isNotNegative(), text), "") << text;
    }
}

}  // namespace
}  // namespace kelvora::tool
