// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <string_view>

namespace kelvora::failures {

/// Groups of functions that are counted together and fail together.
enum class Kind {
    Allocation,  ///< `malloc` and its relatives, `operator new`.
    Thread,      ///< `pthread_create`.
    Open,        ///< Opening and creating files and directories.
    Read,
    Write,
    Close,     ///< The file is closed, but an error is reported: bytes not synced may be lost.
    Sync,      ///< `fsync` and `fdatasync` of files.
    Rename,    ///< `rename`, `renameat` and `renameat2`.
    Link,      ///< `link` and `linkat`.
    Remove,    ///< `unlink`, `unlinkat` and `remove`.
    Truncate,  ///< `ftruncate` and `truncate`.
    MakeDirectory
};
constexpr std::size_t kKinds = 12;

enum class Mode {
    Once,   ///< Only call number N fails.
    On,     ///< Call number N and all later ones fail.
    Short,  ///< Call number N reads or writes only a part.
    Full    ///< As on a full disk: call number N writes only a part, and all later ones fail.
};

/// Which call fails, and how. Written `KIND:MODE:N` or `KIND:MODE:N:ERRNO`, as in `write:once:3`.
struct Plan {
    bool has_failure = false;  ///< If not, calls are only counted.
    Kind kind = Kind::Allocation;
    Mode mode = Mode::Once;
    long number = 0;
    int error = 0;
};

/// The name of a kind in a plan.
const char* nameOf(Kind kind);

/// The error that calls of a kind usually report.
int usualError(Kind kind);

/// \returns whether the text is a plan. `count` is one without a failure.
bool parse(std::string_view text, Plan& plan);

/// The plan that calls follow, and their counts. Lies in memory that processes can share.
struct State {
    std::atomic<bool> is_active{false};
    Plan plan;
    std::array<std::atomic<long>, kKinds> calls{};
    std::atomic<long> failed{0};
    std::atomic<int> left_open{0};  ///< Descriptors that `main` has left open.
};

/// The state of this process.
State& state();

/// Makes `other` the state of this process.
void share(State& other);

/// Begins to count, and to fail as planned. Until `end`.
void begin(const Plan& plan);
void end();

/// Whether calls of this thread are counted.
bool isCounting();

/// What a call has to do.
enum class Order { Work, Fail, WorkInPart };

/// Counts a call. If it has to fail, sets `errno`.
Order count(Kind kind);

/// Whether a call has to fail. For calls that have no parts.
bool fails(Kind kind);

/// During its lifetime, no call of this thread is counted.
class Uncounted {
public:
    Uncounted();
    ~Uncounted();
    Uncounted(const Uncounted&) = delete;
    Uncounted& operator=(const Uncounted&) = delete;
};

}  // namespace kelvora::failures
