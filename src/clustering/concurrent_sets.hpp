// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

namespace kelvora {

/// A partition of the numbers 0 to n - 1 into sets. Any number of threads may join sets at the same
/// time: this is a lock-free union-find (R. J. Anderson, H. Woll: "Wait-free Parallel Algorithms
/// for the Union-Find Problem", STOC 1991). The smallest number of a set represents it, so that
/// results do not depend on the order of the threads.
///
/// Neighbours are joined as soon as they are found, so they need not be stored.
class ConcurrentSets {
public:
    /// Puts each number into its own set. No other thread may use the object meanwhile.
    void reset(std::size_t n) {
        if (n > capacity) {
            parent.reset();  // free the old array first, to never hold both
            capacity = 0;
            parent = std::make_unique<std::atomic<std::uint32_t>[]>(n);
            capacity = n;
        }
        for (std::size_t i = 0; i < n; ++i) {
            parent[i].store(static_cast<std::uint32_t>(i), std::memory_order_relaxed);
        }
    }

    /// Returns the number that represents the set of `x`. Halves the path on the way. If another
    /// thread overwrites such a shortcut, only speed is lost.
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

    /// Quick check whether `x` is in the set of `first`. Never true if it is not. Mostly true if it
    /// is and `first` represents the set.
    bool isKnownIn(std::uint32_t x, std::uint32_t first) const {
        return parent[x].load(std::memory_order_relaxed) == first;
    }

    /// Joins the sets of `x` and `y`.
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
    // A parent is always smaller than its child, or equal for the representative. Every thread
    // keeps this rule, so there are no cycles, and relaxed order is enough.
    std::unique_ptr<std::atomic<std::uint32_t>[]> parent;
    std::size_t capacity = 0;
};

}  // namespace kelvora
