// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::recording {

/// The events in an interval of time. The slicer that returned the window owns them.
struct Window {
    std::uint64_t start_time = 0;    ///< Microseconds; a multiple of the length of the window.
    std::uint64_t end_time = 0;      ///< Microseconds; the window ends before it.
    const Event2D* first = nullptr;  ///< First event of the window.
    const Event2D* last = nullptr;   ///< One past its last event.

    const Event2D* begin() const { return first; }
    const Event2D* end() const { return last; }
    std::size_t size() const { return static_cast<std::size_t>(last - first); }
};

/// Cuts a stream of events into windows of equal length: window k holds the events with times from
/// k * length (included) to (k + 1) * length (excluded). Windows without events are skipped at no
/// cost.
///
///     while (reader->read(events)) {
///         cleaner.clean(events);
///         slicer.add(events);
///         while (slicer.next(window)) { ... }
///     }
///     slicer.finish();
///     while (slicer.next(window)) { ... }
///
/// Memory is bounded by one window and one chunk if windows are retrieved after each chunk.
class WindowSlicer {
public:
    /// \param length  Length of a window, in microseconds.
    /// \throws std::invalid_argument  if it is 0.
    explicit WindowSlicer(std::uint64_t length);

    /// Adds the next chunk of events. Invalidates the windows returned before.
    ///
    /// \param events  In time order within the chunk and from chunk to chunk, as `EventCleaner`
    ///     ensures.
    void add(const std::vector<Event2D>& events);

    /// Signals the end of the events, which completes the last window.
    void finish() { is_finished = true; }

    /// Returns the next complete window, which is valid until events are added.
    ///
    /// \return False if there is none yet; `window` is then unchanged.
    bool next(Window& window);

    /// Number of events that were not returned in windows yet.
    std::size_t waiting() const { return pending.size() - taken; }

    /// Start of the window of the first of these events. There must be one.
    std::uint64_t startOfWaiting() const { return pending[taken].timestamp / length * length; }

    /// Drops these events. Invalidates the windows returned before.
    void clear();

private:
    std::uint64_t length;
    bool is_finished = false;
    std::vector<Event2D> pending;
    std::size_t taken =
        0;  // number of events at the front of `pending` already returned in windows
};

}  // namespace kelvora::recording
