// SPDX-License-Identifier: MIT
#include "command_line/progress_line.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

namespace kelvora::tool {

namespace {

constexpr std::chrono::milliseconds kUpdateInterval{200};
constexpr const char* kEraseLine = "\r\033[K";

}  // namespace

ProgressLine::ProgressLine(std::string title_, bool is_wanted)
    : title(std::move(title_)),
      is_silent(!is_wanted || isatty(STDERR_FILENO) == 0),
      next_update(std::chrono::steady_clock::now() + kUpdateInterval) {}

ProgressLine::~ProgressLine() {
    clear();
}

void ProgressLine::update(std::uint64_t done, std::uint64_t total) {
    if (is_silent || std::chrono::steady_clock::now() < next_update) {
        return;
    }
    if (total == 0) {
        fmt::print(stderr, "{}{}: {} MB", kEraseLine, title, done / 1'000'000);
    } else {
        fmt::print(stderr, "{}{}: {} %", kEraseLine, title, 100 * done / total);
    }
    static_cast<void>(std::fflush(stderr));
    is_shown = true;
    next_update = std::chrono::steady_clock::now() + kUpdateInterval;
}

void ProgressLine::clear() {
    if (is_shown) {
        fmt::print(stderr, "{}", kEraseLine);
        is_shown = false;
    }
}

}  // namespace kelvora::tool
