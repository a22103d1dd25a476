// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Attributes for Clang's thread safety analysis, which checks at compile time that the members a
/// mutex guards are only used while it is locked. Other compilers ignore them.

#if defined(__clang__)
#define KELVORA_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define KELVORA_THREAD_ANNOTATION(attribute)
#endif

/// The class is a lock; `name` is the word for it in warnings.
#define KELVORA_CAPABILITY(name) KELVORA_THREAD_ANNOTATION(capability(name))

/// The class locks in its constructor and unlocks in its destructor.
#define KELVORA_SCOPED_CAPABILITY KELVORA_THREAD_ANNOTATION(scoped_lockable)

/// The member may only be used while the mutex is locked.
#define KELVORA_GUARDED_BY(mutex) KELVORA_THREAD_ANNOTATION(guarded_by(mutex))

/// The function locks the mutex.
#define KELVORA_ACQUIRE(...) KELVORA_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))

/// The function unlocks the mutex.
#define KELVORA_RELEASE(...) KELVORA_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

/// The function may only be called while the mutex is locked.
#define KELVORA_REQUIRES(...) KELVORA_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))

/// The function uses guarded members without the lock on purpose. Say why.
#define KELVORA_NO_THREAD_SAFETY_ANALYSIS KELVORA_THREAD_ANNOTATION(no_thread_safety_analysis)
