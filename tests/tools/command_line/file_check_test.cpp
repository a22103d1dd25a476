// SPDX-License-Identifier: MIT
#include "command_line/file_check.hpp"

#include <gtest/gtest.h>

#include "command_line/usage_error.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

std::string errorOf(const CommandFiles& files) {
    try {
        checkFiles(files);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

class FileCheck : public testing::Test {
protected:
    test::TemporaryDirectory directory;
    const std::filesystem::path a = directory.file("a", "");
    const std::filesystem::path b = directory.file("b");
};

TEST_F(FileCheck, AcceptsFilesThatDiffer) {
    EXPECT_EQ(errorOf({{{"--in", a}}, {{"--out", b}, {"--more", directory.file("c")}}, {}}), "");
}

TEST_F(FileCheck, RefusesAnOutputThatIsAnInput) {
    EXPECT_EQ(errorOf({{{"--in", a}}, {{"--out", a}}, {}}),
              "--out: must not be the same file as --in");
}

TEST_F(FileCheck, RefusesTwoOutputsInOneFile) {
    EXPECT_EQ(errorOf({{}, {{"--out", b}, {"--more", b}}, {}}),
              "--more: must not be the same file as --out");
    EXPECT_EQ(errorOf({{}, {{"--out", "-"}, {"--more", "-"}}, {}}),
              "standard output (--more): must not be the same file as standard output (--out)");
}

TEST_F(FileCheck, AcceptsInputsThatAreTheSame) {
    EXPECT_EQ(errorOf({{{"--in", a}, {"--too", a}}, {}, {}}), "");
}

TEST_F(FileCheck, SkipsEmptyPaths) {
    EXPECT_EQ(errorOf({{}, {{"--out", ""}, {"--more", ""}}, {}}), "");
}

TEST_F(FileCheck, AcceptsADeviceTwice) {
    EXPECT_EQ(
        errorOf({{{"--in", "/dev/null"}}, {{"--out", "/dev/null"}, {"--more", "/dev/null"}}, {}}),
        "");
}

TEST_F(FileCheck, RefusesFilesWithTheNamesOfFrames) {
    const std::filesystem::path frame = directory.file("frame_000001.png");
    EXPECT_EQ(errorOf({{}, {{"--out", frame}}, directory.path()}),
              "--out: must not be one of the pictures of --frames");
    EXPECT_EQ(errorOf({{{"--in", frame}}, {}, directory.path()}),
              "--in: must not be one of the pictures of --frames");
    EXPECT_EQ(errorOf({{}, {{"--out", frame}}, directory.file("frames")}), "");
    EXPECT_EQ(errorOf({{}, {{"--out", b}}, b}), "--frames: must not be the same file as --out");
}

}  // namespace
}  // namespace kelvora::tool
