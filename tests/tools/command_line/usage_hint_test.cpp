// SPDX-License-Identifier: MIT
#include "command_line/usage_hint.hpp"

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

namespace kelvora::tool {
namespace {

TEST(UsageHint, NamesASimilarCommandOrOption) {
    CLI::App program;
    program.add_flag("--version");
    program.add_subcommand("cluster")->add_flag("--quiet");
    program.add_subcommand("info");
    EXPECT_EQ(usageHint(program, {"clutser", "x"}),
              "'clutser' is not a command; did you mean cluster?");
    EXPECT_EQ(usageHint(program, {"--versoin"}),
              "'--versoin' is not an option; did you mean --version?");
    EXPECT_EQ(usageHint(program, {"cluster", "--quite=1"}),
              "'--quite' is not an option; did you mean --quiet?");
    EXPECT_EQ(usageHint(program, {"cluster", "--quiet"}), "");
    EXPECT_EQ(usageHint(program, {"nothing"}), "");
    EXPECT_EQ(usageHint(program, {}), "");
}

}  // namespace
}  // namespace kelvora::tool
