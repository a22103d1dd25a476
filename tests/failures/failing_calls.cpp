// SPDX-License-Identifier: MIT
#include <dirent.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "failures/failure_plan.hpp"
#include "failures/next_function.hpp"
#include "failures/resources.hpp"

using kelvora::failures::count;
using kelvora::failures::fails;
using kelvora::failures::isCounting;
using kelvora::failures::kFirstOwnDescriptor;
using kelvora::failures::Kind;
using kelvora::failures::Order;
using kelvora::failures::state;
using kelvora::failures::Uncounted;

// Threads

KELVORA_REPLACED int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                    void* (*function)(void*), void* argument) noexcept {
    return fails(Kind::Thread)
               ? state().plan.error
               : KELVORA_NEXT(pthread_create)(thread, attributes, function, argument);
}

// The address sanitizer calls this at the start of a thread, and cannot do without the memory.
KELVORA_REPLACED int pthread_getattr_np(pthread_t thread, pthread_attr_t* attributes) noexcept {
    const Uncounted uncounted;
    return KELVORA_NEXT(pthread_getattr_np)(thread, attributes);
}

// Opening

namespace {

/// The permissions of a new file, the argument behind the flags if there is one.
mode_t permissionsFrom(int flags, va_list arguments) {
    const bool creates = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return creates ? static_cast<mode_t>(va_arg(arguments, unsigned int)) : 0;
}

}  // namespace

#define KELVORA_REPLACE_OPEN(name)                                                    \
    KELVORA_REPLACED int name(const char* path, int flags, ...) {                     \
        va_list arguments;                                                            \
        va_start(arguments, flags);                                                   \
        const mode_t permissions = permissionsFrom(flags, arguments);                 \
        va_end(arguments);                                                            \
        return fails(Kind::Open) ? -1 : KELVORA_NEXT(name)(path, flags, permissions); \
    }

#define KELVORA_REPLACE_OPENAT(name)                                                             \
    KELVORA_REPLACED int name(int directory, const char* path, int flags, ...) {                 \
        va_list arguments;                                                                       \
        va_start(arguments, flags);                                                              \
        const mode_t permissions = permissionsFrom(flags, arguments);                            \
        va_end(arguments);                                                                       \
        return fails(Kind::Open) ? -1 : KELVORA_NEXT(name)(directory, path, flags, permissions); \
    }

KELVORA_REPLACE_OPEN(open)
KELVORA_REPLACE_OPEN(open64)
KELVORA_REPLACE_OPENAT(openat)
KELVORA_REPLACE_OPENAT(openat64)

KELVORA_REPLACED int creat(const char* path, mode_t permissions) {
    return fails(Kind::Open) ? -1 : KELVORA_NEXT(creat)(path, permissions);
}

KELVORA_REPLACED int creat64(const char* path, mode_t permissions) {
    return fails(Kind::Open) ? -1 : KELVORA_NEXT(creat64)(path, permissions);
}

KELVORA_REPLACED int mkstemp(char* path) {
    return fails(Kind::Open) ? -1 : KELVORA_NEXT(mkstemp)(path);
}

KELVORA_REPLACED int mkostemp(char* path, int flags) {
    return fails(Kind::Open) ? -1 : KELVORA_NEXT(mkostemp)(path, flags);
}

KELVORA_REPLACED std::FILE* fopen(const char* path, const char* mode) {
    return fails(Kind::Open) ? nullptr : KELVORA_NEXT(fopen)(path, mode);
}

KELVORA_REPLACED std::FILE* fopen64(const char* path, const char* mode) {
    return fails(Kind::Open) ? nullptr : KELVORA_NEXT(fopen64)(path, mode);
}

KELVORA_REPLACED DIR* opendir(const char* path) {
    return fails(Kind::Open) ? nullptr : KELVORA_NEXT(opendir)(path);
}

// Reading and writing

namespace {

/// Whether bytes have been written to a descriptor and not synced.
std::array<std::atomic<bool>, kFirstOwnDescriptor> is_unsynced{};

/// Returns what `is_unsynced` was before.
bool setUnsynced(int descriptor, bool value) {
    return descriptor >= 0 && descriptor < kFirstOwnDescriptor &&
           is_unsynced[static_cast<std::size_t>(descriptor)].exchange(value);
}

/// Calls `work` with a size, or with half of it if only a part is to be read or written.
template <class Work>
ssize_t transfer(Kind kind, std::size_t size, const Work& work) {
    switch (count(kind)) {
        case Order::Fail:
            return -1;
        case Order::WorkInPart:
            return work(std::min(size, std::max<std::size_t>(size / 2, 1)));
        case Order::Work:
            break;
    }
    return work(size);
}

}  // namespace

KELVORA_REPLACED ssize_t read(int descriptor, void* buffer, std::size_t size) {
    return transfer(Kind::Read, size,
                    [&](std::size_t part) { return KELVORA_NEXT(read)(descriptor, buffer, part); });
}

KELVORA_REPLACED ssize_t pread(int descriptor, void* buffer, std::size_t size, off_t offset) {
    return transfer(Kind::Read, size, [&](std::size_t part) {
        return KELVORA_NEXT(pread)(descriptor, buffer, part, offset);
    });
}

KELVORA_REPLACED ssize_t pread64(int descriptor, void* buffer, std::size_t size, off64_t offset) {
    return transfer(Kind::Read, size, [&](std::size_t part) {
        return KELVORA_NEXT(pread64)(descriptor, buffer, part, offset);
    });
}

KELVORA_REPLACED ssize_t write(int descriptor, const void* bytes, std::size_t size) {
    setUnsynced(descriptor, true);
    return transfer(Kind::Write, size,
                    [&](std::size_t part) { return KELVORA_NEXT(write)(descriptor, bytes, part); });
}

KELVORA_REPLACED ssize_t pwrite(int descriptor, const void* bytes, std::size_t size, off_t offset) {
    return transfer(Kind::Write, size, [&](std::size_t part) {
        return KELVORA_NEXT(pwrite)(descriptor, bytes, part, offset);
    });
}

KELVORA_REPLACED ssize_t pwrite64(int descriptor, const void* bytes, std::size_t size,
                                  off64_t offset) {
    return transfer(Kind::Write, size, [&](std::size_t part) {
        return KELVORA_NEXT(pwrite64)(descriptor, bytes, part, offset);
    });
}

KELVORA_REPLACED ssize_t writev(int descriptor, const iovec* parts, int number) {
    return fails(Kind::Write) ? -1 : KELVORA_NEXT(writev)(descriptor, parts, number);
}

// Completing

KELVORA_REPLACED int close(int descriptor) {
    const bool is_failing = setUnsynced(descriptor, false) && fails(Kind::Close);
    const int result = KELVORA_NEXT(close)(descriptor);
    if (result != 0 && errno == EBADF && isCounting()) {
        // Closed twice: another thread could have opened a file with this number meanwhile.
        std::abort();
    }
    if (is_failing) {
        errno = state().plan.error;
        return -1;
    }
    return result;
}

namespace {

/// Only reports a result, which saves time: the files of tests need not be on the disk. Directories
/// are not counted, because programs may ignore that they cannot be synced.
int pretendToSync(int descriptor) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return -1;
    }
    if (S_ISREG(status.st_mode) && fails(Kind::Sync)) {
        return -1;
    }
    setUnsynced(descriptor, false);
    return 0;
}

}  // namespace

KELVORA_REPLACED int fsync(int descriptor) {
    return state().is_active ? pretendToSync(descriptor) : KELVORA_NEXT(fsync)(descriptor);
}

KELVORA_REPLACED int fdatasync(int descriptor) {
    return state().is_active ? pretendToSync(descriptor) : KELVORA_NEXT(fdatasync)(descriptor);
}

// Names

KELVORA_REPLACED int rename(const char* from, const char* to) noexcept {
    return fails(Kind::Rename) ? -1 : KELVORA_NEXT(rename)(from, to);
}

KELVORA_REPLACED int renameat(int from_directory, const char* from, int to_directory,
                              const char* to) noexcept {
    return fails(Kind::Rename) ? -1
                               : KELVORA_NEXT(renameat)(from_directory, from, to_directory, to);
}

KELVORA_REPLACED int renameat2(int from_directory, const char* from, int to_directory,
                               const char* to, unsigned int flags) noexcept {
    return fails(Kind::Rename)
               ? -1
               : KELVORA_NEXT(renameat2)(from_directory, from, to_directory, to, flags);
}

KELVORA_REPLACED int link(const char* from, const char* to) noexcept {
    return fails(Kind::Link) ? -1 : KELVORA_NEXT(link)(from, to);
}

KELVORA_REPLACED int linkat(int from_directory, const char* from, int to_directory, const char* to,
                            int flags) noexcept {
    return fails(Kind::Link) ? -1
                             : KELVORA_NEXT(linkat)(from_directory, from, to_directory, to, flags);
}

KELVORA_REPLACED int unlink(const char* path) noexcept {
    return fails(Kind::Remove) ? -1 : KELVORA_NEXT(unlink)(path);
}

KELVORA_REPLACED int unlinkat(int directory, const char* path, int flags) noexcept {
    return fails(Kind::Remove) ? -1 : KELVORA_NEXT(unlinkat)(directory, path, flags);
}

KELVORA_REPLACED int remove(const char* path) noexcept {
    return fails(Kind::Remove) ? -1 : KELVORA_NEXT(remove)(path);
}

KELVORA_REPLACED int ftruncate(int descriptor, off_t size) noexcept {
    return fails(Kind::Truncate) ? -1 : KELVORA_NEXT(ftruncate)(descriptor, size);
}

KELVORA_REPLACED int ftruncate64(int descriptor, off64_t size) noexcept {
    return fails(Kind::Truncate) ? -1 : KELVORA_NEXT(ftruncate64)(descriptor, size);
}

KELVORA_REPLACED int truncate(const char* path, off_t size) noexcept {
    return fails(Kind::Truncate) ? -1 : KELVORA_NEXT(truncate)(path, size);
}

KELVORA_REPLACED int mkdir(const char* path, mode_t permissions) noexcept {
    return fails(Kind::MakeDirectory) ? -1 : KELVORA_NEXT(mkdir)(path, permissions);
}
