// SPDX-License-Identifier: MIT
#include "command_line/write_options.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

namespace kelvora::tool {
namespace {

class WriteOptionsTest : public testing::Test {
protected:
    WriteOptionsTest() { declareOptions(program, options); }

    CLI::App program;
    recording::WriteOptions options;
};

TEST_F(WriteOptionsTest, OverwriteUnlessToldOtherwise) {
    program.parse("");
    EXPECT_TRUE(options.overwrite);
    program.parse("--no-overwrite");
    EXPECT_FALSE(options.overwrite);
}

TEST_F(WriteOptionsTest, CollectTheNamesOfPartialOutputs) {
    options.on_partial("a.partial");
    options.on_partial("b.partial");
    EXPECT_THAT(partialOutputs(), testing::EndsWith("a.partial, b.partial"));
}

}  // namespace
}  // namespace kelvora::tool
