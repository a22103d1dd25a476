// SPDX-License-Identifier: MIT
#include "command_line/simulate_command.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>
#include <string>

namespace kelvora::tool {
namespace {

using testing::HasSubstr;

std::string errorOf(const std::string& options) {
    CLI::App program;
    SimulateCommand command(program);
    try {
        program.parse("simulate -o a.raw " + options);
    } catch (const CLI::ParseError& error) {
        return error.what();
    }
    return "no error";
}

TEST(SimulateCommand, RefusesScenesOutOfRange) {
    EXPECT_EQ(errorOf("--sensor 15x480"), "--sensor: must be from 16x16 to 4096x4096, not 15x480");
    EXPECT_EQ(errorOf("--sensor 640x4097"),
              "--sensor: must be from 16x16 to 4096x4096, not 640x4097");
    EXPECT_EQ(errorOf("--duration 0ms"), "--duration: must be from 1us to 1000000000s, not 0s");
    EXPECT_EQ(errorOf("--truth-interval 2s"), "--truth-interval: must be from 100us to 1s, not 2s");
    for (const std::string option : {"--discs", "--bars", "--polygons", "--lights"}) {
        EXPECT_EQ(errorOf(option + " 101"), option + ": must be from 0 to 100, not 101");
    }
    EXPECT_EQ(errorOf("--light-frequency 0.5"),
              "--light-frequency: must be from 1 to 500, not 0.5");
    EXPECT_EQ(errorOf("--noise-rate nan"), "--noise-rate: must be from 0 to 100, not nan");
    EXPECT_EQ(errorOf("--hot-pixels -1"), "--hot-pixels: must be from 0 to 1000, not -1");
    EXPECT_EQ(errorOf("--hot-pixel-rate 1e6"),
              "--hot-pixel-rate: must be from 0 to 100000, not 1000000");
    EXPECT_EQ(errorOf("--contrast-threshold 0"),
              "--contrast-threshold: must be from 0.01 to 10, not 0");
    EXPECT_EQ(errorOf("--threshold-spread 0.3"),
              "--threshold-spread: must be from 0 to 0.2, not 0.3");
}

TEST(SimulateCommand, RefusesMoreHotPixelsThanPixels) {
    EXPECT_EQ(errorOf("--sensor 16x16 --hot-pixels 257"),
              "--hot-pixels: must be at most the number of pixels, 256");
}

TEST(SimulateCommand, AcceptsTheEndsOfEachRange) {
    EXPECT_EQ(errorOf("--sensor 16x4096 --duration 1us --truth-interval 1s --discs 0 --bars 100 "
                      "--light-frequency 500 --noise-rate 0 --hot-pixels 1000 "
                      "--contrast-threshold 0.01 --threshold-spread 0.2"),
              "no error");
}

TEST(SimulateCommand, StatesDefaultsAndRanges) {
    CLI::App program;
    SimulateCommand command(program);
    const std::string help = program.get_subcommand("simulate")->help();
    EXPECT_THAT(help, HasSubstr("--sensor WIDTHxHEIGHT [640x480]"));
    EXPECT_THAT(help, HasSubstr("--duration TIME [2s]"));
    EXPECT_THAT(help, HasSubstr("--truth-interval TIME [10ms]"));
    EXPECT_THAT(help, HasSubstr("--bars NUMBER [2]"));
    EXPECT_THAT(help, HasSubstr("Number of flickering lights, 0 to 100"));
    EXPECT_THAT(help, HasSubstr("--hot-pixel-rate HZ [500]"));
}

}  // namespace
}  // namespace kelvora::tool
