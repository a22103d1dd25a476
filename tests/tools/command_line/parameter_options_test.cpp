// SPDX-License-Identifier: MIT
#include "command_line/parameter_options.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <string>

namespace kelvora::tool {
namespace {

class ParameterOptions : public testing::Test {
protected:
    ParameterOptions() { declareParameters(command, builder); }

    std::string errorOf(const std::string& arguments) {
        try {
            command.parse(arguments);
            checkParameters(builder);
        } catch (const CLI::ParseError& error) {
            return error.what();
        }
        return "no error";
    }

    CLI::App command;
    SettingsBuilder builder;
};

TEST_F(ParameterOptions, SetParameters) {
    command.parse("--method density --dim 3 --eps 2.5 --window 5ms --polarity on --track");
    EXPECT_EQ(builder.settings.method, "density");
    EXPECT_EQ(builder.settings.point.dim, 3);
    EXPECT_EQ(builder.settings.density.eps, 2.5);
    EXPECT_EQ(builder.settings.windows.window.microseconds, 5000U);
    EXPECT_EQ(builder.settings.windows.polarity, Polarity::On);
    EXPECT_TRUE(builder.settings.track.is_wanted);
}

TEST_F(ParameterOptions, StateTheirDefaultsInTheHelpText) {
    const std::string help = command.help();
    EXPECT_THAT(help, testing::HasSubstr("--cell-width PIXELS [5]"));
    EXPECT_THAT(help, testing::HasSubstr("--method grid|density|centroid [grid]"));
    EXPECT_THAT(help, testing::HasSubstr("--capacity EVENTS [all]"));
    EXPECT_THAT(help, testing::HasSubstr("--window TIME [10ms]"));
    EXPECT_THAT(help, testing::HasSubstr("--clusters NUMBER  "));
}

TEST_F(ParameterOptions, NameTheOptionInErrors) {
    EXPECT_EQ(errorOf("--eps 0"), "--eps: must be a number larger than 0, not '0'");
    EXPECT_EQ(errorOf("--window 10"), "--window: '10' needs a unit: us, ms or s, as in 10ms");
    EXPECT_EQ(errorOf("--method centroid"), "--clusters: is required with --method centroid");
    EXPECT_EQ(errorOf("--from 2s --to 1s --clusters 3 --method centroid"),
              "--to: must be later than --from");
}

TEST_F(ParameterOptions, RefuseNumbersThatAreTooLarge) {
    EXPECT_EQ(errorOf("--min-cluster-size 99999999999999999999"),
              "--min-cluster-size: must be a whole number from 0 to 2147483647, not '1e+20'");
    EXPECT_EQ(errorOf("--max-cluster-size 1e999"),
              "--max-cluster-size: must be a whole number from 0 to 2147483647, not '1e999'");
}

TEST_F(ParameterOptions, RefuseParametersOfTracksWithoutTracks) {
    EXPECT_EQ(errorOf("--max-missed 5"), "--max-missed: needs --track");
}

}  // namespace
}  // namespace kelvora::tool
