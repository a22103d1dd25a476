// SPDX-License-Identifier: MIT
#include "support/allocations.hpp"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

kelvora::test::AllocationWatch::Counts* watched = nullptr;

void* allocate(std::size_t size) {
    if (watched != nullptr) {
        watched->largest_request = std::max(watched->largest_request, size);
        if (watched->allocations == watched->allowed || size > watched->largest_allowed) {
            throw std::bad_alloc();
        }
        ++watched->allocations;
        ++watched->unfreed;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): operator new cannot use anything else
    if (void* const memory = std::malloc(std::max<std::size_t>(size, 1))) {
        return memory;
    }
    throw std::bad_alloc();
}

void release(void* memory) {
    if (watched != nullptr && memory != nullptr) {
        --watched->unfreed;
    }
    std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): as above
}

}  // namespace

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}

namespace kelvora::test {

AllocationWatch::AllocationWatch(std::size_t allowed, std::size_t largest)
    : counts{allowed, largest} {
    watched = &counts;
}

AllocationWatch::~AllocationWatch() {
    watched = nullptr;
}

}  // namespace kelvora::test
