// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/export.hpp"

namespace kelvora {

/// Counts the events of a sliding window of time, in a ring of time bins that are forgotten one by
/// one.
///
/// Time is that of the events; no clock is read. Not thread-safe.
///
/// \note Time advances by the gap between one event and the next, in whole bins. A stream whose
/// gaps are all shorter than a bin never advances: all its events are counted, however long ago the
/// first ones were.
class KELVORA_EXPORT SlidingEventCounter {
public:
    /// \param window_length  Microseconds, at least 1.
    /// \param num_bins  Bins in the window, at least 1. If there are more than microseconds in the
    ///     window, one bin per microsecond is used. Bins have a whole number of microseconds, so
    ///     that together they may be somewhat shorter than the window.
    /// \throws std::invalid_argument  if one of them is 0.
    SlidingEventCounter(std::size_t window_length, std::size_t num_bins);

    /// Copies the window and what it has counted.
    /// \param other  What to copy; stays as it is.
    SlidingEventCounter(const SlidingEventCounter& other);

    /// Copies the window and what it has counted.
    /// \param other  What to copy; stays as it is.
    /// \returns this counter.
    SlidingEventCounter& operator=(const SlidingEventCounter& other);

    /// Takes over the window and what it has counted.
    /// \param other  Is left without bins: it may only be destroyed or assigned to.
    SlidingEventCounter(SlidingEventCounter&& other) noexcept;

    /// Takes over the window and what it has counted.
    /// \param other  Is left without bins: it may only be destroyed or assigned to.
    /// \returns this counter.
    SlidingEventCounter& operator=(SlidingEventCounter&& other) noexcept;

    /// Frees the bins.
    ~SlidingEventCounter();

    /// Counts one event. Constant time, but for the bins that have to be cleared; no allocation.
    ///
    /// Bins saturate. An event that is older than the one before counts as one from a distant
    /// future: it empties the counter and is counted alone.
    ///
    /// \tparam EventT  `Event2D`, `Event2DFrequency`, or `Event2DPeriod` of `int`, `unsigned int`,
    ///     `float`, `double`, `long long` or `unsigned long long`.
    /// \param event  Of which the timestamp is read, and nothing else.
    /// \throws std::invalid_argument  if `event` is null; nothing changes.
    template <class EventT>
    void addEvent(const EventT* event);

    /// Counts events by their times: the same as `addEvent` for each of them, in less time.
    ///
    /// \param timestamps  `count` times in a row, microseconds.
    /// \param count  Number of times.
    /// \throws std::invalid_argument  if `timestamps` is null, unless `count` is 0; nothing changes.
    void addTimestamps(const unsigned long long* timestamps, std::size_t count);

    /// Counts the events in the window that ends with the last event.
    /// \returns their number, modulo 2^32.
    std::size_t getEventCount() const;

    /// Tells whether `window_length` could be the window: it is not 0, and not smaller than the
    /// number of bins.
    /// \param window_length  Microseconds.
    /// \returns whether it could be.
    /// \note Changes nothing.
    bool setWindowLength(std::size_t window_length);

    /// Forgets all events; the next one starts afresh.
    void reset();

private:
    KELVORA_NO_EXPORT void addTimestamp(std::uint64_t timestamp);
    KELVORA_NO_EXPORT void countInBin(std::size_t events);
    KELVORA_NO_EXPORT void advance(std::uint64_t elapsed);

    std::vector<std::uint32_t> bins;
    std::size_t current_bin = 0;
    std::size_t bin_length;
    std::size_t window_length;
    std::uint64_t last_timestamp = 0;
    std::uint32_t event_count = 0;
    bool first_event = true;
};

extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(const Event2D*);
extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(const Event2DPeriod<int>*);
extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(
    const Event2DPeriod<unsigned int>*);
extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(const Event2DPeriod<float>*);
extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(const Event2DPeriod<double>*);
extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(const Event2DPeriod<long long>*);
extern template KELVORA_EXPORT void SlidingEventCounter::addEvent(
    const Event2DPeriod<unsigned long long>*);

}  // namespace kelvora
