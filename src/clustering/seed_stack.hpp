// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

namespace kelvora {

/// A stack of numbers below n, each of which it holds at most once: pushing one again moves it to the
/// top. Taken from the top, numbers come in the same order as from a stack that keeps all copies and
/// whose reader skips those it has seen. But such a stack grows with the number of all neighbours of
/// all points, to gigabytes in dense data, and this one does not grow.
class SeedStack {
public:
    /// Empties the stack and makes room for the numbers 0 to n - 1.
    void reset(std::size_t n) {
        top = kNone;
        above.assign(n, kAbsent);
        below.assign(n, kAbsent);
    }

    bool empty() const { return top == kNone; }

    void push(std::size_t i) {
        if (i == top) {
            return;
        }
        if (above[i] != kAbsent) {
            unlink(i);
        }
        if (top != kNone) {
            above[top] = i;
        }
        below[i] = top;
        above[i] = kNone;
        top = i;
    }

    std::size_t pop() {
        const std::size_t i = top;
        top = below[i];
        if (top != kNone) {
            above[top] = kNone;
        }
        above[i] = kAbsent;
        return i;
    }

private:
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t kAbsent = kNone - 1;

    /// Takes a number out that is not at the top.
    void unlink(std::size_t i) {
        below[above[i]] = below[i];
        if (below[i] != kNone) {
            above[below[i]] = above[i];
        }
    }

    std::size_t top = kNone;
    std::vector<std::size_t> above;
    std::vector<std::size_t> below;
};

}  // namespace kelvora
