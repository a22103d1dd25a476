// SPDX-License-Identifier: MIT
#include "clustering/seed_stack.hpp"

#include <gmock/gmock.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/event_builders.hpp"

namespace kelvora {
namespace {

using ::testing::ElementsAre;

std::vector<std::uint32_t> popAll(SeedStack& stack) {
    std::vector<std::uint32_t> popped;
    while (!stack.empty()) {
        popped.push_back(stack.pop());
    }
    return popped;
}

std::vector<std::uint32_t> poppedAfter(const std::vector<std::uint32_t>& pushed) {
    SeedStack stack;
    stack.reset(10, 10);
    for (const std::uint32_t i : pushed) {
        stack.push(i);
    }
    return popAll(stack);
}

TEST(SeedStack, IsEmptyAtFirst) {
    EXPECT_TRUE(SeedStack().empty());
    EXPECT_THAT(poppedAfter({}), ElementsAre());
}

TEST(SeedStack, GivesTheLastNumberFirst) {
    EXPECT_THAT(poppedAfter({4, 0, 9}), ElementsAre(9, 0, 4));
}

TEST(SeedStack, MovesANumberThatIsPushedAgainToTheTop) {
    EXPECT_THAT(poppedAfter({1, 2, 3, 3}), ElementsAre(3, 2, 1));
    EXPECT_THAT(poppedAfter({1, 2, 3, 2}), ElementsAre(2, 3, 1));
    EXPECT_THAT(poppedAfter({1, 2, 3, 1}), ElementsAre(1, 3, 2));
}

TEST(SeedStack, TakesANumberBackAfterItWasPopped) {
    SeedStack stack;
    stack.reset(3, 3);
    stack.push(2);
    stack.push(1);
    EXPECT_EQ(stack.pop(), 1U);
    stack.push(1);
    EXPECT_THAT(popAll(stack), ElementsAre(1, 2));
}

TEST(SeedStack, ForgetsAllNumbersWhenReset) {
    SeedStack stack;
    stack.reset(3, 3);
    stack.push(2);
    stack.push(1);
    stack.reset(5, 5);
    EXPECT_TRUE(stack.empty());
    stack.push(2);
    stack.push(4);
    EXPECT_THAT(popAll(stack), ElementsAre(4, 2));
}

TEST(SeedStack, GivesTheSameOrderAsAStackThatSkipsOldCopies) {
    test::Random random(1);
    constexpr std::size_t kCount = 30;
    for (int round = 0; round < 300; ++round) {
        SeedStack stack;
        stack.reset(kCount, kCount);
        std::vector<std::uint32_t> copies;
        std::vector<bool> popped(kCount, false);
        while (true) {
            for (std::size_t pushes = random() % 6; pushes > 0; --pushes) {
                const auto i = static_cast<std::uint32_t>(random() % kCount);
                if (!popped[i]) {
                    stack.push(i);
                    copies.push_back(i);
                }
            }
            while (!copies.empty() && popped[copies.back()]) {
                copies.pop_back();
            }
            ASSERT_EQ(stack.empty(), copies.empty());
            if (stack.empty()) {
                break;
            }
            popped[copies.back()] = true;
            ASSERT_EQ(stack.pop(), copies.back());
        }
    }
}

}  // namespace
}  // namespace kelvora
