// SPDX-License-Identifier: MIT
#include "command_line/standard_streams.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace kelvora::tool {
namespace {

/// Runs a check in a child process, whose streams may be closed.
bool holdsInChild(bool (*check)()) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(check() ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return status == 0;
}

TEST(StandardStreams, PrintToTheStreams) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    print("result\n");
    printError("message\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "result\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "message\n");
}

TEST(StandardStreams, KeepOtherFilesFromGettingTheirNumbers) {
    EXPECT_TRUE(holdsInChild([] {
        ::close(0);
        ::close(1);
        ::close(2);
        occupyStandardStreams();
        return ::open("/dev/null", O_RDONLY | O_CLOEXEC) > 2;
    }));
}

TEST(StandardStreams, RemainUnusableIfTheyWereClosed) {
    EXPECT_TRUE(holdsInChild([] {
        ::close(0);
        ::close(1);
        ::close(2);
        occupyStandardStreams();
        char byte = 0;
        const bool reads = ::read(0, &byte, 1) >= 0 || errno != EBADF;
        const bool writes = ::write(1, &byte, 1) >= 0 || errno != EBADF;
        printError("nobody reads this\n");
        return !reads && !writes;
    }));
}

TEST(StandardStreams, AreLeftAloneIfTheyAreOpen) {
    EXPECT_TRUE(holdsInChild([] {
        occupyStandardStreams();
        return ::fcntl(1, F_GETFD) >= 0 && ::dup(1) > 2;
    }));
}

}  // namespace
}  // namespace kelvora::tool
