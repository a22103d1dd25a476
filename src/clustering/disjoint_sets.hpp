// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <numeric>
#include <vector>

namespace kelvora {

/// A partition of the numbers 0 to n - 1 into sets, which can only be joined (union-find).
class DisjointSets {
public:
    /// Each number is a set of its own.
    explicit DisjointSets(std::size_t n) : parent(n) {
        std::iota(parent.begin(), parent.end(), std::size_t{0});
    }

    /// The number that stands for the set of `x`. Compresses the whole path, in two passes:
    /// recursion would overflow the stack, as paths can be half as long as there are numbers.
    std::size_t find(std::size_t x) {
        std::size_t root = x;
        while (parent[root] != root) {
            root = parent[root];
        }
        while (parent[x] != root) {
            const std::size_t next = parent[x];
            parent[x] = root;
            x = next;
        }
        return root;
    }

    /// Puts the set of `x` under that of `y`, whichever is larger: the root of `y` stands for both.
    void join(std::size_t x, std::size_t y) {
        const std::size_t root = find(x);
        parent[root] = find(y);
    }

private:
    std::vector<std::size_t> parent;
};

}  // namespace kelvora
