// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::recording {

/// The events of a span of time. They belong to the slicer that gave the window.
struct Window {
    std::uint64_t start_time = 0;    ///< Microseconds; a multiple of the length of the window.
    std::uint64_t end_time = 0;      ///< Microseconds; the window ends before it.
    const Event2D* first = nullptr;  ///< First event of the window.
    const Event2D* last = nullptr;   ///< Behind its last event.

    const Event2D* begin() const { return first; }
    const Event2D* end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
};

/// Cuts a stream of events into windows of equal length: window k holds the events with times from
/// k * length (included) to (k + 1) * length (excluded). Windows without events are left out, and
/// cost nothing.
///
///     while (reader->read(events)) {
///         cleaner.clean(events);
///         slicer.add(events);
///         while (slicer.next(window)) { ... }
///     }
///     slicer.finish();
///     while (slicer.next(window)) { ... }
///
/// Memory is bounded by one window and one chunk, if windows are taken after each chunk.
class WindowSlicer {
public:
    /// \param length  Of a window, in microseconds.
    /// \throws std::invalid_argument  if it is 0.
    explicit WindowSlicer(std::uint64_t length);

    /// Takes the next chunk of events. Ends the life of the windows given before.
    ///
    /// \param events  In order of time, as `EventCleaner` makes them, within the chunk and from
    ///     chunk to chunk.
    void add(const std::vector<Event2D>& events);

    /// Tells that no more events will come: the last window is complete.
    void finish() { is_finished = true; }

    /// Gives the next complete window, which is valid until events are added.
    ///
    /// \return False if there is none yet; `window` is then unchanged.
    bool next(Window& window);

private:
    std::uint64_t length;
    bool is_finished = false;
    std::vector<Event2D> pending;
    std::size_t taken =
        0;  // number of events in front of `pending` that have been given in windows
};

}  // namespace kelvora::recording
