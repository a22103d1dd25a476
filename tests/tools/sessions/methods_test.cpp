// SPDX-License-Identifier: MIT
#include "sessions/methods.hpp"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kelvora::tool {
namespace {

TEST(Methods, AreFoundByName) {
    EXPECT_TRUE(methodOf("density").uses(Group::Points));
    EXPECT_FALSE(methodOf("grid").uses(Group::Points));
    EXPECT_THROW(methodOf("optics"), std::invalid_argument);
    EXPECT_EQ(suggestedMethod("k-means"), "; did you mean centroid?");
    EXPECT_EQ(suggestedMethod("optics"), "");
}

}  // namespace
}  // namespace kelvora::tool
