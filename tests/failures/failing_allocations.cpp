// SPDX-License-Identifier: MIT
#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

#include "failures/failure_plan.hpp"
#include "failures/next_function.hpp"
#include "failures/resources.hpp"

using kelvora::failures::fails;
using kelvora::failures::Kind;
using kelvora::failures::lookUp;
using kelvora::failures::Uncounted;

namespace {

std::atomic<long> unfreed{0};

void* counted(void* memory) {
    if (memory != nullptr) {
        ++unfreed;
    }
    return memory;
}

}  // namespace

long kelvora::failures::unfreedAllocations() {
    return unfreed;
}

KELVORA_REPLACED void* malloc(std::size_t size) noexcept {
    return fails(Kind::Allocation) ? nullptr : counted(KELVORA_NEXT(malloc)(size));
}

KELVORA_REPLACED void* calloc(std::size_t count, std::size_t size) noexcept {
    return fails(Kind::Allocation) ? nullptr : counted(KELVORA_NEXT(calloc)(count, size));
}

KELVORA_REPLACED void free(void* memory) noexcept {
    static std::atomic<void*> function;
    static thread_local bool is_looking_up = false;
    if (is_looking_up) {
        return;  // `dlsym` frees the text of an earlier error. Without this, it would call itself.
    }
    is_looking_up = true;
    const auto next = reinterpret_cast<decltype(&::free)>(lookUp(function, "free"));
    is_looking_up = false;
    if (memory != nullptr) {
        --unfreed;
    }
    next(memory);
}

KELVORA_REPLACED void* realloc(void* memory, std::size_t size) noexcept {
    if (fails(Kind::Allocation)) {
        return nullptr;
    }
    void* const moved = KELVORA_NEXT(realloc)(memory, size);
    if (memory == nullptr) {
        return counted(moved);
    }
    if (moved == nullptr && size == 0) {
        --unfreed;  // The C library of GNU frees the memory then.
    }
    return moved;
}

KELVORA_REPLACED void* reallocarray(void* memory, std::size_t count, std::size_t size) noexcept {
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes)) {
        errno = ENOMEM;
        return nullptr;
    }
    return realloc(memory, bytes);
}

KELVORA_REPLACED void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return fails(Kind::Allocation) ? nullptr
                                   : counted(KELVORA_NEXT(aligned_alloc)(alignment, size));
}

KELVORA_REPLACED void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return fails(Kind::Allocation) ? nullptr : counted(KELVORA_NEXT(memalign)(alignment, size));
}

KELVORA_REPLACED int posix_memalign(void** memory, std::size_t alignment,
                                    std::size_t size) noexcept {
    if (fails(Kind::Allocation)) {
        return ENOMEM;
    }
    const int error = KELVORA_NEXT(posix_memalign)(memory, alignment, size);
    if (error == 0) {
        counted(*memory);
    }
    return error;
}

namespace {

/// Calls the function of a mangled name, which may in turn call one of the functions above.
template <class... Arguments>
void* allocateNext(std::atomic<void*>& function, const char* name, Arguments... arguments) {
    const auto next = reinterpret_cast<void* (*)(Arguments...)>(lookUp(function, name));
    const Uncounted uncounted;
    return next(arguments...);
}

template <class... Arguments>
void* allocateOrThrow(std::atomic<void*>& function, const char* name, Arguments... arguments) {
    if (fails(Kind::Allocation)) {
        if (const std::new_handler handler = std::get_new_handler()) {
            handler();
        }
        throw std::bad_alloc();
    }
    return allocateNext(function, name, arguments...);
}

template <class... Arguments>
void* allocateOrNull(std::atomic<void*>& function, const char* name, Arguments... arguments) {
    return fails(Kind::Allocation) ? nullptr : allocateNext(function, name, arguments...);
}

}  // namespace

KELVORA_VISIBLE void* operator new(std::size_t size) {
    static std::atomic<void*> function;
    return allocateOrThrow(function, "_Znwm", size);
}

KELVORA_VISIBLE void* operator new[](std::size_t size) {
    static std::atomic<void*> function;
    return allocateOrThrow(function, "_Znam", size);
}

KELVORA_VISIBLE void* operator new(std::size_t size, std::align_val_t alignment) {
    static std::atomic<void*> function;
    return allocateOrThrow(function, "_ZnwmSt11align_val_t", size, alignment);
}

KELVORA_VISIBLE void* operator new[](std::size_t size, std::align_val_t alignment) {
    static std::atomic<void*> function;
    return allocateOrThrow(function, "_ZnamSt11align_val_t", size, alignment);
}

KELVORA_VISIBLE void* operator new(std::size_t size, const std::nothrow_t& tag) noexcept {
    static std::atomic<void*> function;
    return allocateOrNull(function, "_ZnwmRKSt9nothrow_t", size, &tag);
}

KELVORA_VISIBLE void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    static std::atomic<void*> function;
    return allocateOrNull(function, "_ZnamRKSt9nothrow_t", size, &tag);
}

KELVORA_VISIBLE void* operator new(std::size_t size, std::align_val_t alignment,
                                   const std::nothrow_t& tag) noexcept {
    static std::atomic<void*> function;
    return allocateOrNull(function, "_ZnwmSt11align_val_tRKSt9nothrow_t", size, alignment, &tag);
}

KELVORA_VISIBLE void* operator new[](std::size_t size, std::align_val_t alignment,
                                     const std::nothrow_t& tag) noexcept {
    static std::atomic<void*> function;
    return allocateOrNull(function, "_ZnamSt11align_val_tRKSt9nothrow_t", size, alignment, &tag);
}
