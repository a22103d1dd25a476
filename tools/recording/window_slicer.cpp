// SPDX-License-Identifier: MIT
#include "recording/window_slicer.hpp"

#include <algorithm>
#include <stdexcept>

namespace kelvora::recording {

WindowSlicer::WindowSlicer(std::uint64_t length_) : length(length_) {
    if (length == 0) {
        throw std::invalid_argument("the length of a window must not be 0");
    }
}

void WindowSlicer::add(const std::vector<Event2D>& events) {
    pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(taken));
    taken = 0;
    pending.insert(pending.end(), events.begin(), events.end());
}

void WindowSlicer::clear() {
    pending = {};
    taken = 0;
}

bool WindowSlicer::next(Window& window) {
    if (taken == pending.size()) {
        return false;
    }
    const Event2D* const first = pending.data() + taken;
    const Event2D* const last = pending.data() + pending.size();
    const std::uint64_t index = first->timestamp / length;
    const auto is_inside = [&](const Event2D& event) { return event.timestamp / length == index; };
    if (!is_finished && is_inside(last[-1])) {
        return false;
    }
    window.start_time = index * length;
    window.end_time = window.start_time + length;
    window.first = first;
    window.last = std::partition_point(first, last, is_inside);
    taken += window.size();
    return true;
}

}  // namespace kelvora::recording
