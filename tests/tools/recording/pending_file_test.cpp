// SPDX-License-Identifier: MIT
#include "recording/pending_file.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <system_error>

#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

class PendingFileTest : public ::testing::Test {
protected:
    PendingFileTest() { EXPECT_EQ(::write(pending.descriptor(), "new", 3), 3); }

    test::TemporaryDirectory directory;
    std::filesystem::path path = directory.file("a.csv");
    std::filesystem::path unfinished =
        directory.file(".a.csv.unfinished-" + std::to_string(::getpid()));
    PendingFile pending{path, {}};
};

TEST_F(PendingFileTest, HasANameThatTellsItsState) {
    EXPECT_EQ(test::contentOf(unfinished), "new");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(PendingFileTest, TakesAnotherNameThanASecondOne) {
    const PendingFile second(path, {});
    EXPECT_TRUE(std::filesystem::exists(unfinished.string() + ".2"));
    EXPECT_EQ(test::contentOf(unfinished), "new");
}

TEST_F(PendingFileTest, GetsItsNameWhenItIsComplete) {
    directory.file("a.csv", "old");
    pending.complete(true);
    EXPECT_EQ(test::contentOf(path), "new");
    EXPECT_EQ(directory.fileCount(), 1U);
}

TEST_F(PendingFileTest, ReplacesNothingThatAppearedMeanwhile) {
    directory.file("a.csv", "old");
    try {
        pending.complete(false);
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::file_exists);
    }
    EXPECT_EQ(test::contentOf(path), "old");
    std::filesystem::remove(path);
    pending.complete(false);
    EXPECT_EQ(test::contentOf(path), "new");
}

TEST_F(PendingFileTest, IsKeptAsPartialWithoutReplacingAnything) {
    directory.file("a.csv", "old");
    directory.file("a.csv.partial", "older");
    EXPECT_EQ(pending.keep(), directory.file("a.csv.partial.2"));
    EXPECT_EQ(test::contentOf(directory.file("a.csv.partial.2")), "new");
    EXPECT_EQ(test::contentOf(directory.file("a.csv.partial")), "older");
    EXPECT_EQ(test::contentOf(path), "old");
    EXPECT_EQ(directory.fileCount(), 3U);
}

TEST_F(PendingFileTest, CanBeRemoved) {
    pending.remove();
    EXPECT_EQ(directory.fileCount(), 0U);
}

TEST_F(PendingFileTest, HasThePermissionsOfTheReplacedFile) {
    std::filesystem::permissions(directory.file("b", "old"), std::filesystem::perms(0640));
    struct stat replaced {};
    ASSERT_EQ(::stat(directory.file("b").c_str(), &replaced), 0);
    PendingFile(directory.file("b"), replaced).complete(true);
    EXPECT_EQ(std::filesystem::status(directory.file("b")).permissions(),
              std::filesystem::perms(0640));
}

TEST_F(PendingFileTest, HasThePermissionsOfANewFileOtherwise) {
    const mode_t mask = ::umask(027);
    PendingFile(directory.file("b"), {}).complete(true);
    ::umask(mask);
    EXPECT_EQ(std::filesystem::status(directory.file("b")).permissions(),
              std::filesystem::perms(0640));
}

TEST_F(PendingFileTest, CutsNamesThatHaveNoRoomForAnEnding) {
    const std::string longest(255, 'x');
    PendingFile file(directory.file(longest), {});
    EXPECT_EQ(file.keep(), directory.file(longest.substr(0, 247) + ".partial"));
    PendingFile(directory.file(longest), {}).complete(true);
    EXPECT_TRUE(std::filesystem::exists(directory.file(longest)));
}

TEST_F(PendingFileTest, ReportsADirectoryThatIsMissing) {
    EXPECT_THROW(PendingFile(directory.file("no/a.csv"), {}), std::system_error);
}

}  // namespace
}  // namespace kelvora::recording
