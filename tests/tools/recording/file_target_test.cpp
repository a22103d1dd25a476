// SPDX-License-Identifier: MIT
#include "recording/file_target.hpp"

#include <gtest/gtest.h>

#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

class FileTargetTest : public ::testing::Test {
protected:
    /// Makes a symbolic link.
    std::filesystem::path link(const char* name, const std::filesystem::path& target) const {
        std::filesystem::create_symlink(target, directory.file(name));
        return directory.file(name);
    }

    test::TemporaryDirectory directory;
};

TEST_F(FileTargetTest, IsThePathItselfWithoutLinks) {
    EXPECT_EQ(targetOf(directory.file("a")).path, directory.file("a"));
    EXPECT_EQ(targetOf(directory.file("a", "content")).path, directory.file("a"));
}

TEST_F(FileTargetTest, IsAbsolute) {
    EXPECT_EQ(targetOf("a").path, std::filesystem::current_path() / "a");
}

TEST_F(FileTargetTest, IsAtTheEndOfAllLinks) {
    link("b", "c");
    link("a", directory.file("b"));
    EXPECT_EQ(targetOf(directory.file("a")).path, directory.file("c"));
}

TEST_F(FileTargetTest, FollowsLinksRelativeToTheirDirectory) {
    std::filesystem::create_directory(directory.file("inner"));
    link("inner/a", "../b");
    EXPECT_EQ(targetOf(directory.file("inner/a")).path, directory.file("inner/../b"));
}

TEST_F(FileTargetTest, StopsAtLinksWithoutEnd) {
    link("a", "b");
    link("b", "a");
    EXPECT_TRUE(std::filesystem::is_symlink(targetOf(directory.file("a")).path));
}

TEST_F(FileTargetTest, RecognisesOpenFiles) {
    EXPECT_EQ(targetOf("/dev/stdout").descriptor, 1);
    EXPECT_EQ(targetOf("/dev/fd/2").descriptor, 2);
    EXPECT_EQ(targetOf("/proc/self/fd/0").descriptor, 0);
    EXPECT_EQ(targetOf(link("a", "/dev/stderr")).descriptor, 2);
    EXPECT_FALSE(targetOf("/dev/null").descriptor);
}

TEST_F(FileTargetTest, TakesADashForStandardOutputOfOutputsOnly) {
    EXPECT_EQ(targetOfOutput("-").descriptor, 1);
    EXPECT_FALSE(targetOf("-").descriptor);
    EXPECT_EQ(targetOfOutput(directory.file("a")).path, directory.file("a"));
}

}  // namespace
}  // namespace kelvora::recording
