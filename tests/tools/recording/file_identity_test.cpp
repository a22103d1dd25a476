// SPDX-License-Identifier: MIT
#include "recording/file_identity.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

class FileIdentityTest : public ::testing::Test {
protected:
    FileIdentityTest() {
        std::filesystem::create_directory(directory.file("inner"));
        std::filesystem::create_directory_symlink("inner", directory.file("outer"));
    }

    FileIdentity identityOf(const std::filesystem::path& name) const {
        return FileIdentity(targetOf(directory.path() / name));
    }

    void expectSame(const std::filesystem::path& a, const std::filesystem::path& b) const {
        EXPECT_TRUE(identityOf(a) == identityOf(b)) << a << ' ' << b;
    }

    void expectOther(const std::filesystem::path& a, const std::filesystem::path& b) const {
        EXPECT_FALSE(identityOf(a) == identityOf(b)) << a << ' ' << b;
    }

    test::TemporaryDirectory directory;
};

TEST_F(FileIdentityTest, TellsFilesApart) {
    directory.file("a", "");
    directory.file("b", "");
    expectSame("a", "a");
    expectOther("a", "b");
    expectOther("a", "inner");
    expectOther("a", "missing");
}

TEST_F(FileIdentityTest, IsTheSameForAllPathsToAFile) {
    directory.file("inner/a", "");
    std::filesystem::create_hard_link(directory.file("inner/a"), directory.file("hard"));
    std::filesystem::create_symlink("inner/a", directory.file("soft"));
    expectSame("inner/a", "hard");
    expectSame("inner/a", "soft");
    expectSame("inner/a", "outer/a");
    expectSame("inner/a", "inner/../inner/./a");
}

TEST_F(FileIdentityTest, IsTheSameForAllPathsToAFileThatIsMissing) {
    std::filesystem::create_symlink("inner/a", directory.file("dangling"));
    expectSame("inner/a", "dangling");
    expectSame("inner/a", "outer/a");
    expectSame("inner/a", "inner/../inner/./a");
    expectSame("inner/new", "inner/new/");
    expectOther("inner/a", "a");
    expectOther("inner/a", "inner/b");
    expectOther("inner/a", "inner/b/a");
    expectOther("inner/a", "inner");
}

TEST_F(FileIdentityTest, KnowsDevices) {
    EXPECT_TRUE(identityOf("/dev/null").isDevice());
    EXPECT_FALSE(identityOf(directory.file("a", "")).isDevice());
    EXPECT_FALSE(identityOf("missing").isDevice());
}

TEST_F(FileIdentityTest, ComparesOpenFilesWithPaths) {
    directory.file("a", "");
    directory.file("b", "");
    const int descriptor = ::open(directory.file("a").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    const FileIdentity open_file({"", descriptor});
    ::close(descriptor);
    EXPECT_TRUE(open_file == identityOf("a"));
    EXPECT_FALSE(open_file == identityOf("b"));
}

}  // namespace
}  // namespace kelvora::recording
