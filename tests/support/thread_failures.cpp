// SPDX-License-Identifier: MIT
#include "support/thread_failures.hpp"

#include <dlfcn.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <new>

namespace {

std::atomic<bool> watching_starts{false};
std::atomic<int> starts_left{0};
std::atomic<int> started_threads{0};
std::atomic<int> ended_threads{0};

std::atomic<bool> failing_allocations{false};
std::atomic<int> allocations_left{0};
thread_local bool is_spared = false;

using ThreadFunction = void* (*)(void*);
using CreateFunction = int (*)(pthread_t*, const pthread_attr_t*, ThreadFunction, void*);

/// The function of a thread and its argument.
struct Task {
    ThreadFunction function;
    void* argument;
};

void* runTask(void* raw_task) {
    const Task task = *static_cast<Task*>(raw_task);
    std::free(raw_task);  // NOLINT(cppcoreguidelines-no-malloc): see below
    void* const result = task.function(task.argument);
    ++ended_threads;
    return result;
}

void* allocate(std::size_t size) {
    if (failing_allocations && !is_spared && allocations_left-- <= 0) {
        throw std::bad_alloc();
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): operator new cannot use anything else
    if (void* const memory = std::malloc(std::max<std::size_t>(size, 1))) {
        return memory;
    }
    throw std::bad_alloc();
}

}  // namespace

extern "C" __attribute__((visibility("default"))) int pthread_create(
    pthread_t* thread, const pthread_attr_t* attributes, ThreadFunction function,
    void* argument) noexcept {
    static const auto create = reinterpret_cast<CreateFunction>(dlsym(RTLD_NEXT, "pthread_create"));
    if (!watching_starts) {
        return create(thread, attributes, function, argument);
    }
    if (starts_left-- <= 0) {
        return EAGAIN;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): operator new may be set to fail
    auto* const task = static_cast<Task*>(std::malloc(sizeof(Task)));
    *task = {function, argument};
    ++started_threads;
    return create(thread, attributes, runTask, task);
}

void* operator new(std::size_t size) {
    return allocate(size);
}
void* operator new[](std::size_t size) {
    return allocate(size);
}
// NOLINTBEGIN(cppcoreguidelines-no-malloc): as above
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
// NOLINTEND(cppcoreguidelines-no-malloc)

namespace kelvora::test {

ThreadStartWatch::ThreadStartWatch(int allowed) {
    starts_left = allowed;
    started_threads = 0;
    ended_threads = 0;
    watching_starts = true;
}

ThreadStartWatch::~ThreadStartWatch() {
    watching_starts = false;
}

// Members, because they refer to a watch.
// NOLINTBEGIN(readability-convert-member-functions-to-static)
int ThreadStartWatch::started() const {
    return started_threads;
}

bool ThreadStartWatch::allEnded() const {
    return started_threads == ended_threads;
}
// NOLINTEND(readability-convert-member-functions-to-static)

FailingThreadAllocations::FailingThreadAllocations(int allowed) {
    is_spared = true;
    allocations_left = allowed;
    failing_allocations = true;
}

FailingThreadAllocations::~FailingThreadAllocations() {
    failing_allocations = false;
    is_spared = false;
}

}  // namespace kelvora::test
