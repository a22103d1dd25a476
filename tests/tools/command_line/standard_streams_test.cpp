// SPDX-License-Identifier: MIT
#include "command_line/standard_streams.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

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

/// Device and number of the file behind a descriptor.
std::pair<dev_t, ino_t> fileOf(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 ? std::pair(status.st_dev, status.st_ino)
                                             : std::pair(dev_t{0}, ino_t{0});
}

/// Makes the streams write to a pipe. Returns whether this succeeded.
bool connectStreamsToAPipe() {
    std::array<int, 2> ends{};
    return ::pipe2(ends.data(), O_CLOEXEC) == 0 && ::dup2(ends[1], 0) == 0 &&
           ::dup2(ends[1], 1) == 1 && ::dup2(ends[1], 2) == 2;
}

int lowestFreeDescriptor() {
    const int descriptor = ::dup(1);
    ::close(descriptor);
    return descriptor;
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
        const bool are_open = connectStreamsToAPipe();
        const auto pipe = fileOf(1);
        const int lowest_free = lowestFreeDescriptor();
        occupyStandardStreams();
        return are_open && fileOf(0) == pipe && fileOf(1) == pipe && fileOf(2) == pipe &&
               lowestFreeDescriptor() == lowest_free;
    }));
}

}  // namespace
}  // namespace kelvora::tool
