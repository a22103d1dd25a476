// SPDX-License-Identifier: MIT
#include "failures/failure_plan.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "failures/failure_checks.hpp"
#include "failures/resources.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::test {
namespace {

using failures::Kind;
using failures::Mode;
using failures::Plan;
using testing::ElementsAre;

Plan planOf(const std::string& text) {
    Plan plan;
    EXPECT_TRUE(failures::parse(text, plan)) << text;
    return plan;
}

TEST(APlan, NamesAKindAModeAndTheNumberOfACall) {
    const Plan plan = planOf("write:on:12");
    EXPECT_TRUE(plan.has_failure);
    EXPECT_EQ(plan.kind, Kind::Write);
    EXPECT_EQ(plan.mode, Mode::On);
    EXPECT_EQ(plan.number, 12);
    EXPECT_EQ(plan.error, ENOSPC);
}

TEST(APlan, MayNameAnError) {
    EXPECT_EQ(planOf("read:once:1:4").error, EINTR);
}

TEST(APlan, MayOnlyCount) {
    EXPECT_FALSE(planOf("count").has_failure);
}

TEST(APlan, IsRefusedIfAPartIsWrong) {
    Plan plan;
    for (const char* const text :
         {"", "write", "write:once", "write:once:", "write:once:x", "wrote:once:1", "write:twice:1",
          "write:once:1:x", "write:once:1:4:5"}) {
        EXPECT_FALSE(failures::parse(text, plan)) << text;
    }
}

/// Which of four allocations fail.
std::vector<bool> failedAllocations(const char* plan) {
    const FailingCalls failing(planOf(plan));
    std::vector<bool> failed;
    failed.reserve(4);  // The first allocation.
    for (int i = 0; i < 4; ++i) {
        // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): the calls to test
        void* volatile const memory = std::malloc(8);
        failed.push_back(memory == nullptr);
        std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): as above
    }
    return failed;
}

TEST(ACall, FailsOnceOrFromThenOn) {
    EXPECT_THAT(failedAllocations("count"), ElementsAre(false, false, false, false));
    EXPECT_THAT(failedAllocations("allocation:once:3"), ElementsAre(false, true, false, false));
    EXPECT_THAT(failedAllocations("allocation:on:3"), ElementsAre(false, true, true, true));
}

TEST(ACall, IsCountedOnceEvenIfItNeedsAnother) {
    const FailingCalls counting({});
    ::operator delete(::operator new(8));
    EXPECT_EQ(FailingCalls::calls(Kind::Allocation), 1);
}

TEST(ACall, IsNotCountedWhileItsThreadIsSpared) {
    const FailingCalls failing(planOf("allocation:on:1"));
    const failures::Uncounted spared;
    EXPECT_NO_THROW(::operator delete(::operator new(8)));
    EXPECT_EQ(FailingCalls::calls(Kind::Allocation), 0);
}

TEST(AnAllocation, ThrowsIfItFails) {
    const FailingCalls failing(planOf("allocation:once:1"));
    EXPECT_THROW(::operator delete(::operator new(8)), std::bad_alloc);
    EXPECT_EQ(FailingCalls::failed(), 1);
}

TEST(AnAllocation, IsUnfreedUntilItIsFreed) {
    const long before = failures::unfreedAllocations();
    // NOLINTBEGIN(cppcoreguidelines-no-malloc): the calls to test
    void* volatile const memory = std::malloc(8);
    EXPECT_EQ(failures::unfreedAllocations(), before + 1);
    void* volatile const moved = std::realloc(memory, 100'000);
    EXPECT_EQ(failures::unfreedAllocations(), before + 1);
    std::free(moved);
    // NOLINTEND(cppcoreguidelines-no-malloc)
    EXPECT_EQ(failures::unfreedAllocations(), before);
}

TEST(AThread, DoesNotStartIfItFails) {
    const FailingCalls failing(planOf("thread:once:1"));
    EXPECT_THROW(std::thread([] {}), std::system_error);
}

/// Files whose calls fail.
class FilesThatFail : public testing::Test {
protected:
    int open() const { return ::open(path.c_str(), O_RDWR | O_CREAT, 0600); }

    TemporaryDirectory directory;
    std::filesystem::path path = directory.file("file");
};

TEST_F(FilesThatFail, AreNotOpened) {
    const FailingCalls failing(planOf("open:once:1"));
    EXPECT_EQ(open(), -1);
    EXPECT_EQ(errno, EMFILE);
}

TEST_F(FilesThatFail, TakeAPartOnAFullDisk) {
    const int file = open();
    {
        const FailingCalls failing(planOf("write:full:2"));
        EXPECT_EQ(::write(file, "abcdef", 6), 6);
        EXPECT_EQ(::write(file, "ghijkl", 6), 3);
        EXPECT_EQ(::write(file, "jkl", 3), -1);
        EXPECT_EQ(errno, ENOSPC);
    }
    ::close(file);
    EXPECT_EQ(contentOf(path), "abcdefghi");
}

TEST_F(FilesThatFail, AreClosedAllTheSame) {
    const int file = open();
    EXPECT_EQ(::write(file, "a", 1), 1);
    {
        const FailingCalls failing(planOf("close:once:1"));
        EXPECT_EQ(::close(file), -1);
        EXPECT_EQ(errno, EIO);
    }
    EXPECT_EQ(::write(file, "a", 1), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST_F(FilesThatFail, AreClosedWithoutAnErrorIfTheyAreSynced) {
    const FailingCalls failing(planOf("close:once:1"));
    const int file = open();
    EXPECT_EQ(::write(file, "a", 1), 1);
    EXPECT_EQ(::fsync(file), 0);
    EXPECT_EQ(::close(file), 0);
}

TEST_F(FilesThatFail, EndTheProgramIfTheyAreClosedTwice) {
    const auto close_twice = [this] {
        const int file = open();
        const FailingCalls failing(planOf("count"));
        ::close(file);
        ::close(file);
    };
    EXPECT_EXIT(close_twice(), testing::KilledBySignal(SIGABRT), "");
}

TEST_F(FilesThatFail, AreOpenUntilTheyAreClosed) {
    const int before = failures::openDescriptors();
    const int file = open();
    EXPECT_EQ(failures::openDescriptors(), before + 1);
    ::close(file);
    EXPECT_EQ(failures::openDescriptors(), before);
}

TEST_F(FilesThatFail, AreNotSynced) {
    const int file = open();
    const int parent = ::open(directory.path().c_str(), O_RDONLY);
    {
        const FailingCalls failing(planOf("sync:once:1"));
        EXPECT_EQ(::fsync(parent), 0);  // Directories do not count.
        EXPECT_EQ(::fsync(file), -1);
        EXPECT_EQ(errno, EIO);
    }
    ::close(parent);
    ::close(file);
}

TEST_F(FilesThatFail, ReportStreamsThatAreNotWritten) {
    std::FILE* const stream = std::fopen(path.c_str(), "w");
    {
        const FailingCalls failing(planOf("write:once:2"));
        EXPECT_EQ(std::fputs("a", stream), 1);
        EXPECT_EQ(std::fputs("b", stream), EOF);
        EXPECT_EQ(errno, ENOSPC);
        EXPECT_EQ(std::fputs("c", stream), 1);
    }
    EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(FilesThatFail, LoseTheBufferOfAStreamThatIsNotClosed) {
    std::FILE* const stream = std::fopen(path.c_str(), "w");
    {
        const FailingCalls failing(planOf("write:once:2"));
        EXPECT_EQ(std::fputs("a", stream), 1);
        EXPECT_EQ(std::fclose(stream), EOF);
    }
    EXPECT_EQ(contentOf(path), "");
}

}  // namespace
}  // namespace kelvora::test
