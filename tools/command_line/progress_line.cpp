// SPDX-License-Identifier: MIT
#include "command_line/progress_line.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <utility>

#include "command_line/standard_streams.hpp"

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
        printError(fmt::format("{}{}: {} MB", kEraseLine, title, done / 1'000'000));
    } else {
        printError(fmt::format("{}{}: {} %", kEraseLine, title, 100 * done / total));
    }
    is_shown = true;
    next_update = std::chrono::steady_clock::now() + kUpdateInterval;
}

void ProgressLine::clear() {
    if (is_shown) {
        printError(kEraseLine);
        is_shown = false;
    }
}

}  // namespace kelvora::tool
