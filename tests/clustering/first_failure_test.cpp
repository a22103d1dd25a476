// SPDX-License-Identifier: MIT
#include "clustering/first_failure.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

namespace kelvora {
namespace {

void failWith(FirstFailure& failure, const std::string& message) {
    try {
        throw std::runtime_error(message);
    } catch (...) {
        failure.keepCurrent();
    }
}

TEST(FirstFailure, ThrowsNothingIfNothingFailed) {
    FirstFailure failure;
    EXPECT_NO_THROW(failure.rethrow());
}

TEST(FirstFailure, ThrowsTheFirstOfSeveralFailures) {
    FirstFailure failure;
    failWith(failure, "first");
    failWith(failure, "second");
    try {
        failure.rethrow();
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "first");
    }
}

TEST(FirstFailure, RethrowsAnExceptionOfAnotherThread) {
    FirstFailure failure;
    std::thread other([&] { failWith(failure, "elsewhere"); });
    other.join();
    EXPECT_THROW(failure.rethrow(), std::runtime_error);
}

}  // namespace
}  // namespace kelvora
