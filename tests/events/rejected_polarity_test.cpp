// SPDX-License-Identifier: MIT
#include "events/rejected_polarity.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace kelvora {
namespace {

TEST(RejectedPolarity, IsOneForPositiveFreeAndZeroForNegativeFree) {
    EXPECT_EQ(rejectedPolarity(POSITIVE_FREE), 1);
    EXPECT_EQ(rejectedPolarity(NEGATIVE_FREE), 0);
}

TEST(RejectedPolarity, IsAValueThatNoEventHasIfNothingIsFiltered) {
    EXPECT_EQ(rejectedPolarity(POLARITY_FREE), 2);
    EXPECT_EQ(rejectedPolarity(POLARITY_SEPARATE), 2);
}

class UnknownFilterType : public ::testing::TestWithParam<std::uint32_t> {};

TEST_P(UnknownFilterType, ThrowsOutOfRangeWithAFixedText) {
    try {
        rejectedPolarity(static_cast<EventFilterType>(GetParam()));
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_EQ(error.what(), std::string("invalid unordered_map<K, T> key"));
    }
}

INSTANTIATE_TEST_SUITE_P(Values, UnknownFilterType,
                         ::testing::Values(4, 5, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF));

}  // namespace
}  // namespace kelvora
