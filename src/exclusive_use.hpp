// SPDX-License-Identifier: MIT
#pragma once

#ifndef NDEBUG
#include <atomic>
#include <cassert>
#endif

namespace kelvora {

/// Checks in debug builds that calls which must not overlap do not: neither on two threads nor by
/// re-entrance. Each of these calls holds a `Scope`. In release builds it does nothing.
///
/// It finds mistakes, but does not protect from them: an overlap ends the program.
class ExclusiveUse {
public:
    class Scope;

#ifndef NDEBUG
private:
    std::atomic<bool> is_in_use = false;
#endif
};

/// One call, from construction to destruction.
class ExclusiveUse::Scope {
public:
#ifdef NDEBUG
    explicit Scope(ExclusiveUse& /*use*/) {}
#else
    // Relaxed: the check must not order calls that the caller left unordered, as that would hide
    // their race from the thread sanitizer.
    explicit Scope(ExclusiveUse& use_) : use(use_) {
        const bool overlaps = use.is_in_use.exchange(true, std::memory_order_relaxed);
        assert(!overlaps && "two calls overlap that must not, see docs/threads.md");
    }
    ~Scope() {
        use.is_in_use.store(false, std::memory_order_relaxed);
    }

    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    ExclusiveUse& use;
#endif
};

}  // namespace kelvora
