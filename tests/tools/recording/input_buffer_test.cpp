// SPDX-License-Identifier: MIT
#include "recording/input_buffer.hpp"

#include <gtest/gtest.h>

#include "kelvora/recording/recording_error.hpp"
#include "recording/coding/event_decoder.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

std::string countedBytes(std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes.push_back(static_cast<char>(i % 251));
    }
    return bytes;
}

TEST(InputBuffer, KeepsBytesThatAreNotSkippedWhileItGrows) {
    const test::TemporaryDirectory directory;
    const std::string bytes = countedBytes(1'000'000);
    InputBuffer buffer(directory.file("a", bytes), nullptr);
    ASSERT_TRUE(buffer.fillTo(10));
    buffer.skip(10);
    ASSERT_TRUE(buffer.fillTo(bytes.size() - 10));
    EXPECT_EQ(buffer.unread(), std::string_view(bytes).substr(10));
    EXPECT_EQ(buffer.position(), 10U);
    EXPECT_FALSE(buffer.fill());
}

TEST(InputBuffer, SaysThatAFileHasFewerBytes) {
    const test::TemporaryDirectory directory;
    InputBuffer buffer(directory.file("a", "abc"), nullptr);
    EXPECT_FALSE(buffer.fillTo(4));
    EXPECT_EQ(buffer.unread(), "abc");
}

TEST(InputBuffer, GrowsUpToTheSizeOfAnItem) {
    InputBuffer buffer("/dev/zero", nullptr);
    EXPECT_TRUE(buffer.fillTo(kMaxItemBytes));
    EXPECT_EQ(buffer.unread().size(), kMaxItemBytes);
    EXPECT_THROW(buffer.fill(), RecordingError);
    buffer.skip(1);
    EXPECT_TRUE(buffer.fill());
}

}  // namespace
}  // namespace kelvora::recording
