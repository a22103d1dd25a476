// SPDX-License-Identifier: MIT
#include "sessions/settings_builder.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "sessions/parameter_error.hpp"
#include "tools/sessions/keyword_wording.hpp"

namespace kelvora::tool {
namespace {

/// Sets parameters, checks them, and returns the error.
std::string errorOf(const std::vector<std::pair<const char*, Value>>& values) {
    try {
        SettingsBuilder builder;
        for (const auto& [keyword, value] : values) {
            builder.set(*findParameter(keyword), value);
        }
        builder.check();
    } catch (const ParameterError& error) {
        return error.parameter->keyword + (": " + describe(error, kKeywordWording));
    }
    return "no error";
}

std::int64_t whole(int number) {
    return number;
}

TEST(SettingsBuilder, StoresParametersInSettings) {
    SettingsBuilder builder;
    builder.set(*findParameter("method"), std::string("density"));
    builder.set(*findParameter("eps"), 2.5);
    builder.set(*findParameter("min_pts"), whole(4));
    builder.set(*findParameter("scale_time"), 0.5);
    builder.set(*findParameter("dim"), whole(3));
    builder.set(*findParameter("precision"), std::string("double"));
    builder.set(*findParameter("keep_zero_boxes"), true);
    builder.set(*findParameter("to_us"), whole(70));
    builder.check();
    EXPECT_EQ(builder.settings.density.eps, 2.5);
    EXPECT_EQ(builder.settings.density.min_pts, 4);
    EXPECT_EQ(builder.settings.point.scales().time, 0.5F);
    EXPECT_EQ(builder.settings.point.precision, Precision::Double);
    EXPECT_TRUE(builder.settings.point.keep_zero_boxes);
    EXPECT_EQ(builder.settings.windows.to->microseconds, 70U);
}

TEST(SettingsBuilder, RefusesValuesOutOfRange) {
    EXPECT_EQ(errorOf({{"cell_width", whole(0)}}),
              "cell_width: must be a whole number from 1 to 65536, not '0'");
    EXPECT_EQ(errorOf({{"cell_width", 2.5}}),
              "cell_width: must be a whole number from 1 to 65536, not '2.5'");
    EXPECT_EQ(errorOf({{"eps", std::string("x")}}), "eps: must be a number larger than 0, not 'x'");
    EXPECT_EQ(errorOf({{"scale_x", 1e-300}}),
              "scale_x: must be a number larger than 0, not '1e-300'");
    EXPECT_EQ(errorOf({{"min_pts", whole(0)}}),
              "min_pts: must be a whole number of at least 1, not '0'");
    EXPECT_EQ(errorOf({{"window_us", whole(-1)}}).substr(0, 22), "window_us: must be a w");
    EXPECT_EQ(
        errorOf({{"polarity", std::string("seperate")}}),
        "polarity: must be one of 'all', 'on', 'off', 'separate', not 'seperate'; did you mean "
        "separate?");
    EXPECT_EQ(errorOf({{"method", std::string("dbscan")}}),
              "method: must be one of 'grid', 'density', 'centroid', not 'dbscan'; did you mean "
              "density?");
}

TEST(SettingsBuilder, AcceptsWholeNumbersUpToTheLargestOfTheirType) {
    const double end = 0x1p64;
    SettingsBuilder builder;
    builder.set(*findParameter("capacity"), std::nextafter(end, 0.0));
    EXPECT_EQ(builder.settings.point.capacity, 0xFFFF'FFFF'FFFF'F800U);
    EXPECT_THROW(builder.set(*findParameter("capacity"), end), ParameterError);
    builder.set(*findParameter("min_pts"), 2147483647.0);
    EXPECT_EQ(builder.settings.density.min_pts, 0x7FFF'FFFF);
    EXPECT_THROW(builder.set(*findParameter("min_pts"), 0x1p31), ParameterError);
}

TEST(SettingsBuilder, RefusesContradictions) {
    const Value density = std::string("density");
    EXPECT_EQ(errorOf({{"eps", 2.0}}), "eps: is not used with method grid");
    EXPECT_EQ(errorOf({{"method", std::string("centroid")}}),
              "k: is required with method centroid");
    EXPECT_EQ(errorOf({{"method", density}, {"polarity", std::string("separate")}}),
              "polarity: separate needs method grid");
    EXPECT_EQ(errorOf({{"min_cluster_size", whole(9)}, {"max_cluster_size", whole(8)}}),
              "min_cluster_size: must be at most max_cluster_size");
    EXPECT_EQ(errorOf({{"window_us", whole(0)}}), "window_us: must be longer than 0");
    EXPECT_EQ(errorOf({{"from_us", whole(5)}, {"to_us", whole(5)}}),
              "to_us: must be later than from_us");
    EXPECT_EQ(errorOf({{"method", density}, {"us_per_pixel", 5.0}}), "us_per_pixel: needs dim 3");
    EXPECT_EQ(errorOf({{"method", density}, {"us_per_pixel", 5.0}, {"scale_time", 5.0}}),
              "scale_time: excludes us_per_pixel");
    EXPECT_EQ(errorOf({{"method", density}, {"time_length_us", whole(0)}}),
              "time_length_us: must be longer than 0");
    EXPECT_EQ(
        errorOf({{"method", density}, {"dim", whole(3)}, {"window_us", whole(2'000'000'000)}}),
        "window_us: must be at most 1800s with dim 3");
    EXPECT_EQ(errorOf({{"max_missed", whole(3)}}), "max_missed: needs tracking");
    EXPECT_EQ(errorOf({{"max_missed", whole(3)}, {"tracking", true}}), "no error");
    EXPECT_EQ(errorOf({{"count_every_event", false}, {"method", density}}), "no error");
}

TEST(SettingsBuilder, KnowsTheGivenParameters) {
    SettingsBuilder builder;
    builder.set(*findParameter("eps"), 2.5);
    builder.set(*findParameter("tracking"), false);
    EXPECT_EQ(builder.givenParameters(), std::set<const Parameter*>{findParameter("eps")});
}

}  // namespace
}  // namespace kelvora::tool
