// SPDX-License-Identifier: MIT
#pragma once

#include <dlfcn.h>

#include <atomic>

namespace kelvora::failures {

/// Looks a function up in the libraries behind this one, at the first call.
// A lock would be wrong here: looking one function up may call another.
inline void* lookUp(std::atomic<void*>& function, const char* name) {
    if (function == nullptr) {
        function = dlsym(RTLD_NEXT, name);
    }
    return function;
}

}  // namespace kelvora::failures

/// The function that a name stands for without this library.
#define KELVORA_NEXT(name)                                                                       \
    ([] {                                                                                        \
        static std::atomic<void*> looked_up{nullptr};                                            \
        return reinterpret_cast<decltype(&::name)>(kelvora::failures::lookUp(looked_up, #name)); \
    }())

#define KELVORA_VISIBLE __attribute__((visibility("default")))

/// A function that takes the place of another.
#define KELVORA_REPLACED extern "C" KELVORA_VISIBLE
