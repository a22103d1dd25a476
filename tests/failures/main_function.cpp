// SPDX-License-Identifier: MIT
// Runs the main function of a program with failures.
//
// With KELVORA_FAILURES=PLAN in the environment, the calls of `main` fail as planned, and counts are
// printed afterwards. With KELVORA_FAILURES_SERVER=IN,OUT the program is loaded once, and runs as
// often as requests arrive at the descriptor IN: each in a process of its own, a copy of the first.
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "failures/failure_plan.hpp"
#include "failures/full_device.hpp"
#include "failures/next_function.hpp"
#include "failures/resources.hpp"

namespace kelvora::failures {
namespace {

using MainFunction = int (*)(int, char**, char**);

MainFunction program_main = nullptr;

constexpr int kProtocolError = 70;
constexpr unsigned kLongestRun = 300;  // seconds

/// What streams hold is written at the exit, which is a part of the program, too.
void flushAsAtExit() {
    if (std::fflush(stdout) != 0) {
        static FullDevice full(STDOUT_FILENO);
        full.stay();
    }
}

int runWith(const Plan& plan, int count, char** arguments, char** environment) {
    const int open_before = openDescriptors();
    begin(plan);
    const int status = program_main(count, arguments, environment);
    flushAsAtExit();
    end();
    state().left_open = openDescriptors() - open_before;
    return status;
}

// A request: its length, then texts that end with a null character each: plan, directory, file for
// standard output, file for standard error, and the arguments.
constexpr std::size_t kLongestRequest = 16384;
constexpr std::size_t kMostTexts = 100;

struct Request {
    std::array<char, kLongestRequest> bytes{};
    std::array<char*, kMostTexts> texts{};
    int count = 0;
};

bool readAll(int descriptor, void* buffer, std::size_t size) {
    auto* next = static_cast<char*>(buffer);
    while (size > 0) {
        const ssize_t read_now = ::read(descriptor, next, size);
        if (read_now <= 0) {
            return false;
        }
        next += read_now;
        size -= static_cast<std::size_t>(read_now);
    }
    return true;
}

bool readRequest(int descriptor, Request& request) {
    std::uint32_t size = 0;
    if (!readAll(descriptor, &size, sizeof size) || size >= kLongestRequest ||
        !readAll(descriptor, request.bytes.data(), size)) {
        return false;
    }
    request.texts = {};
    request.count = 0;
    for (std::size_t begin = 0; begin < size;) {
        char* const text = request.bytes.data() + begin;
        request.texts.at(static_cast<std::size_t>(request.count++)) = text;
        begin += std::strlen(text) + 1;
    }
    return true;
}

void redirect(const char* path, int descriptor) {
    const int file = ::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
    if (::dup2(file, descriptor) < 0) {
        ::_exit(kProtocolError);
    }
    ::close(file);
}

[[noreturn]] void runRequest(Request& request, char* program, char** environment) {
    constexpr int kOwnTexts = 4;
    Plan plan;
    if (request.count < kOwnTexts || !parse(request.texts[0], plan) ||
        ::chdir(request.texts[1]) != 0) {
        ::_exit(kProtocolError);
    }
    redirect(request.texts[2], STDOUT_FILENO);
    redirect(request.texts[3], STDERR_FILENO);
    ::alarm(kLongestRun);
    request.texts[kOwnTexts - 1] = program;
    std::exit(
        runWith(plan, request.count - kOwnTexts + 1, &request.texts[kOwnTexts - 1], environment));
}

/// Answers a request: the status of the process, the numbers of failures and of descriptors that are
/// left open, and the calls of each kind.
void answer(int descriptor, int status) {
    constexpr std::size_t kFirstCalls = 3;
    std::array<std::int64_t, kFirstCalls + kKinds> numbers{status, state().failed,
                                                           state().left_open};
    for (std::size_t kind = 0; kind < kKinds; ++kind) {
        numbers[kFirstCalls + kind] = state().calls[kind];
    }
    if (::write(descriptor, numbers.data(), sizeof numbers) != sizeof numbers) {
        std::exit(kProtocolError);
    }
}

int serve(int in, int out, char* program, char** environment) {
    void* const shared =
        ::mmap(nullptr, sizeof(State), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    share(*new (shared) State);
    static Request request;
    while (readRequest(in, request)) {
        const pid_t process = ::fork();
        if (process == 0) {
            ::close(in);
            ::close(out);
            runRequest(request, program, environment);
        }
        int status = 0;
        while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
        }
        end();
        answer(out, status);
    }
    return 0;
}

void printCounts() {
    for (std::size_t kind = 0; kind < kKinds; ++kind) {
        std::fprintf(stderr, "%s %ld\n", nameOf(static_cast<Kind>(kind)),
                     state().calls[kind].load());
    }
}

int mainWithFailures(int count, char** arguments, char** environment) {
    if (const char* const server = std::getenv("KELVORA_FAILURES_SERVER")) {
        int in = 0;
        int out = 0;
        return std::sscanf(server, "%d,%d", &in, &out) == 2
                   ? serve(in, out, arguments[0], environment)
                   : kProtocolError;
    }
    const char* const text = std::getenv("KELVORA_FAILURES");
    if (text == nullptr) {
        return program_main(count, arguments, environment);
    }
    Plan plan;
    if (!parse(text, plan)) {
        std::fprintf(stderr, "KELVORA_FAILURES=%s: not a plan such as write:once:3\n", text);
        return kProtocolError;
    }
    const int status = runWith(plan, count, arguments, environment);
    if (!plan.has_failure) {
        printCounts();
    }
    return status;
}

}  // namespace
}  // namespace kelvora::failures

/// The function of the C library that calls `main`.
KELVORA_REPLACED int __libc_start_main(int (*main)(int, char**, char**), int count,
                                       char** arguments, int (*init)(int, char**, char**),
                                       void (*fini)(), void (*loader_fini)(), void* stack_end) {
    using Start = decltype(&__libc_start_main);
    kelvora::failures::program_main = main;
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(kelvora::failures::mainWithFailures, count, arguments, init, fini, loader_fini,
                 stack_end);
}
