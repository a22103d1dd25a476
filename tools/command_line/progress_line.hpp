// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kelvora::tool {

/// Shows the progress of a long operation on the terminal. Silent if standard error is not a
/// terminal.
class ProgressLine {
public:
    ProgressLine(std::string title_, bool is_wanted);
    ~ProgressLine();

    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Shows the completed share, at most a few times per second.
    /// \param total  0 if unknown: only `done` is shown then.
    void update(std::uint64_t done, std::uint64_t total);

    /// Removes the line.
    void clear();

private:
    std::string title;
    bool is_silent;
    bool is_shown = false;
    std::chrono::steady_clock::time_point next_update;
};

}  // namespace kelvora::tool
