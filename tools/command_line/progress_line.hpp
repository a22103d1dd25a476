// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace kelvora::tool {

/// A line on the terminal that says how far a long operation has come. Silent if standard error is
/// no terminal.
class ProgressLine {
public:
    ProgressLine(std::string title_, bool is_wanted);
    ~ProgressLine();

    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    /// Shows the share that is done, at most a few times per second.
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
