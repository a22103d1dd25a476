// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>

/// \file
/// Watches `operator new` and `operator delete` of the whole program, including libraries.
///
/// Linking `allocations.cpp` into a program replaces these functions. Not thread-safe.

namespace kelvora::test {

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

/// Records allocations and deallocations during its lifetime. At most one may exist at a time.
class AllocationWatch {
public:
    /// \param allowed  Number of allocations after which the next one fails with `std::bad_alloc`.
    /// \param largest  Requests of more bytes than this fail, too.
    explicit AllocationWatch(std::size_t allowed = kNoLimit, std::size_t largest = kNoLimit);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    std::size_t allocations() const { return counts.allocations; }
    /// Allocations minus deallocations.
    std::ptrdiff_t unfreed() const { return counts.unfreed; }
    /// The largest number of bytes requested at once, including failed requests.
    std::size_t largestRequest() const { return counts.largest_request; }

    struct Counts {
        std::size_t allowed;
        std::size_t largest_allowed;
        std::size_t allocations = 0;
        std::ptrdiff_t unfreed = 0;
        std::size_t largest_request = 0;
    };

private:
    Counts counts;
};

}  // namespace kelvora::test
