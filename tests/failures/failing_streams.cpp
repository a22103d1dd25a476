// SPDX-License-Identifier: MIT
// The functions of <cstdio> that write. They call the system inside the C library, where the
// functions of failing_calls.cpp are not used. So they fail by writing to a device that is full.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>

#include "failures/failure_plan.hpp"
#include "failures/full_device.hpp"
#include "failures/next_function.hpp"

using kelvora::failures::fails;
using kelvora::failures::FullDevice;
using kelvora::failures::Kind;
using kelvora::failures::state;
using kelvora::failures::Uncounted;

namespace {

/// Whether writing has to fail. Streams have no defined behaviour for interrupted calls.
bool isFull() {
    return fails(Kind::Write) && state().plan.error != EINTR;
}

/// Calls `work`, which writes to a stream. Its bytes do not wait in the buffer of a full stream.
///
/// \returns whether the bytes could be written.
template <class Work>
bool writeTo(std::FILE* stream, const Work& work) {
    const bool is_full = isFull();
    const Uncounted uncounted;
    if (!is_full) {
        return work();
    }
    const FullDevice full(fileno(stream));
    return work() && KELVORA_NEXT(fflush)(stream) == 0;
}

}  // namespace

KELVORA_REPLACED std::size_t fwrite(const void* data, std::size_t size, std::size_t number,
                                    std::FILE* stream) {
    std::size_t written = 0;
    const bool is_written = writeTo(stream, [&] {
        written = KELVORA_NEXT(fwrite)(data, size, number, stream);
        return true;
    });
    return is_written ? written : 0;
}

KELVORA_REPLACED int fputs(const char* text, std::FILE* stream) {
    return writeTo(stream, [&] { return KELVORA_NEXT(fputs)(text, stream) >= 0; }) ? 1 : EOF;
}

#undef putc
KELVORA_REPLACED int fputc(int character, std::FILE* stream) {
    return writeTo(stream, [&] { return KELVORA_NEXT(fputc)(character, stream) != EOF; })
               ? static_cast<unsigned char>(character)
               : EOF;
}

KELVORA_REPLACED int putc(int character, std::FILE* stream) {
    return fputc(character, stream);
}

KELVORA_REPLACED int puts(const char* text) {
    return writeTo(stdout, [&] { return KELVORA_NEXT(puts)(text) >= 0; }) ? 1 : EOF;
}

KELVORA_REPLACED int fflush(std::FILE* stream) {
    return writeTo(stream == nullptr ? stdout : stream,
                   [&] { return KELVORA_NEXT(fflush)(stream) == 0; })
               ? 0
               : EOF;
}

KELVORA_REPLACED int fclose(std::FILE* stream) {
    const bool is_full = isFull();
    const bool is_failing = fails(Kind::Close);
    int result = 0;
    if (is_full) {
        FullDevice full(fileno(stream));
        result = KELVORA_NEXT(fflush)(stream);
        full.stay();
    }
    const Uncounted uncounted;
    result = KELVORA_NEXT(fclose)(stream) == 0 ? result : EOF;
    if (is_failing) {
        errno = state().plan.error;
        return EOF;
    }
    return result;
}
