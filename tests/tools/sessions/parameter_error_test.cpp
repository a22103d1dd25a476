// SPDX-License-Identifier: MIT
#include "sessions/parameter_error.hpp"

#include <gtest/gtest.h>

#include <string>

namespace kelvora::tool {
namespace {

using Kind = ParameterError::Kind;

const Wording kOptions = {[](const Parameter& parameter) { return std::string(parameter.option); },
                          [](const Parameter& parameter, const std::string& value) {
                              return parameter.option + ("=" + value);
                          }};

/// The description of an error of one parameter in relation to another.
std::string describeError(Kind kind, const char* keyword, const std::string& value,
                          const char* other = nullptr, const std::string& own = {}) {
    return describe({kind, findParameter(keyword), value,
                     other == nullptr ? nullptr : findParameter(other), own},
                    kOptions);
}

TEST(ParameterError, NamesOtherParametersInTheWordsOfTheInterface) {
    EXPECT_EQ(describeError(Kind::Required, "k", "centroid", "method"),
              "is required with --method=centroid");
    EXPECT_EQ(describeError(Kind::NotUsed, "eps", "grid", "method"),
              "is not used with --method=grid");
    EXPECT_EQ(describeError(Kind::Needs, "us_per_pixel", "3", "dim"), "needs --dim=3");
    EXPECT_EQ(describeError(Kind::OnlyWith, "polarity", "grid", "method", "separate"),
              "separate needs --method=grid");
    EXPECT_EQ(describeError(Kind::Excludes, "scale_time", "", "us_per_pixel"),
              "excludes --us-per-pixel");
    EXPECT_EQ(describeError(Kind::After, "to_us", "", "from_us"), "must be later than --from");
    EXPECT_EQ(describeError(Kind::AtMost, "min_cluster_size", "", "max_cluster_size"),
              "must be at most --max-cluster-size");
    EXPECT_EQ(describeError(Kind::TooLong, "window_us", "3", "dim", "1800s"),
              "must be at most 1800s with --dim=3");
}

TEST(ParameterError, StatesTheAcceptedValues) {
    EXPECT_EQ(describeError(Kind::Number, "dim", "4"),
              "must be a whole number from 2 to 3, not '4'");
    EXPECT_EQ(describeError(Kind::Number, "eps", "0"), "must be a number larger than 0, not '0'");
    EXPECT_EQ(describeError(Kind::Number, "max_distance", "-1"),
              "must be a number of at least 0, not '-1'");
    EXPECT_EQ(describeError(Kind::Number, "tracking", "2"), "must be true or false, not '2'");
    EXPECT_EQ(describeError(Kind::Word, "precision", "floats"),
              "must be one of 'float', 'double', not 'floats'; did you mean float?");
    EXPECT_EQ(describeError(Kind::IsZero, "window_us", ""), "must be longer than 0");
    EXPECT_EQ(describeError(Kind::Text, "window_us", "has no unit"), "has no unit");
}

}  // namespace
}  // namespace kelvora::tool
