// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace kelvora {

/// A partition of the numbers 0 to n - 1 into sets, which any number of threads may join at the same
/// time (union-find without locks, after R. J. Anderson, H. Woll: "Wait-free Parallel Algorithms for
/// the Union-Find Problem", STOC 1991). The smallest number of a set stands for it, so that results
/// do not depend on which thread comes first.
///
/// Joining while searching for neighbours makes it needless to keep them.
class ConcurrentSets {
public:
    /// Makes each number a set of its own. Not while other threads use the object.
    void reset(std::size_t n) {
        if (n > capacity) {
            parent.reset();  // not both at once
            capacity = 0;
            parent = std::make_unique<std::atomic<std::uint32_t>[]>(n);
            capacity = n;
        }
        for (std::size_t i = 0; i < n; ++i) {
            parent[i].store(static_cast<std::uint32_t>(i), std::memory_order_relaxed);
        }
    }

    /// The number that stands for the set of `x`. Halves the path on its way: losing such a
    /// shortcut to another thread does no harm.
    std::uint32_t find(std::uint32_t x) {
        while (true) {
            std::uint32_t above = parent[x].load(std::memory_order_relaxed);
            if (above == x) {
                return x;
            }
            const std::uint32_t next = parent[above].load(std::memory_order_relaxed);
            if (next != above) {
                parent[x].compare_exchange_weak(above, next, std::memory_order_relaxed);
            }
            x = next;
        }
    }

    /// Whether `x` is seen to be in the set of `first`, without a search: never if it is not, and
    /// mostly if it is and `first` stands for the set.
    bool isKnownIn(std::uint32_t x, std::uint32_t first) const {
        return parent[x].load(std::memory_order_relaxed) == first;
    }

    void join(std::uint32_t x, std::uint32_t y) {
        while (true) {
            x = find(x);
            y = find(y);
            if (x == y) {
                return;
            }
            if (x < y) {
                std::swap(x, y);
            }
            std::uint32_t expected = x;
            if (parent[x].compare_exchange_strong(expected, y, std::memory_order_relaxed)) {
                return;
            }
        }
    }

private:
    // Parents are smaller than their children, which no thread changes: there are no cycles, and
    // relaxed order is enough.
    std::unique_ptr<std::atomic<std::uint32_t>[]> parent;
    std::size_t capacity = 0;
};

}  // namespace kelvora
