// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/export.hpp"

namespace kelvora {

/// Counts the events in a sliding time window, with a ring of time bins. The oldest bins are
/// cleared as time advances.
///
/// \code{.cpp}
/// kelvora::SlidingEventCounter counter(1000, 10);  // 10 bins of 100 us
/// for (const unsigned long long time : {0ULL, 100ULL, 200ULL, 1150ULL}) {
///     const kelvora::Event2D event(0, 0, 1, time);
///     counter.addEvent(&event);
/// }
/// std::cout << counter.getEventCount() << " events within 1000 us\n";
/// \endcode
///
/// Time is taken from the events; no clock is read. Only one thread at a time may use an object.
///
/// \note Time advances by the gap between one event and the next, in whole bins. If all gaps of a
/// stream are shorter than a bin, time never advances: all events are counted,
/// however old they are.
class KELVORA_EXPORT SlidingEventCounter {
public:
    /// \param window_length  Microseconds, at least 1.
    /// \param num_bins  Bins in the window, at least 1, and at most one per microsecond is used. A
    ///     bin is a whole number of microseconds long, so all bins together may be slightly shorter
    ///     than the window.
    /// \throws std::invalid_argument  if one of them is 0.
    SlidingEventCounter(std::size_t window_length, std::size_t num_bins);

    /// Copies the window and its counts.
    /// \param other  The counter to copy.
    SlidingEventCounter(const SlidingEventCounter& other);

    /// Copies the window and its counts. If an exception is thrown, this counter does not change.
    /// \param other  The counter to copy.
    /// \returns this counter.
    SlidingEventCounter& operator=(const SlidingEventCounter& other);

    /// Moves the window and its counts.
    /// \param other  Is left without bins: it may only be destroyed or assigned to.
    SlidingEventCounter(SlidingEventCounter&& other) noexcept;

    /// Moves the window and its counts.
    /// \param other  Is left without bins: it may only be destroyed or assigned to.
    /// \returns this counter.
    SlidingEventCounter& operator=(SlidingEventCounter&& other) noexcept;

    /// Frees the bins.
    ~SlidingEventCounter();

    /// Counts one event. Takes constant time, plus the time to clear old bins. Allocates nothing.
    ///
    /// Bins saturate. An event older than the previous one counts as one from the distant future:
    /// it empties the counter and is counted alone.
    ///
    /// \tparam EventT  `Event2D`, `Event2DFrequency`, or `Event2DPeriod` of `int`, `unsigned int`,
    ///     `float`, `double`, `long long` or `unsigned long long`.
    /// \param event  Only the timestamp is read.
    /// \throws std::invalid_argument  if `event` is null; nothing changes.
    template <class EventT>
    void addEvent(const EventT* event);

    /// Counts several events by their timestamps. Does the same as `addEvent` for each
    /// of them, but faster.
    ///
    /// \param timestamps  Array of `count` timestamps, microseconds.
    /// \param count  Number of timestamps.
    /// \throws std::invalid_argument  if `timestamps` is null, unless `count`
    ///     is 0; nothing changes.
    void addTimestamps(const unsigned long long* timestamps, std::size_t count);

    /// Returns the number of events in the window that ends with the last event.
    /// \returns the number modulo 2^32.
    std::size_t getEventCount() const;

    /// Checks whether `window_length` would be a valid window: not 0, and not smaller than the
    /// number of bins.
    /// \param window_length  Microseconds.
    /// \returns whether it is valid.
    /// \note Does not change the window.
    bool setWindowLength(std::size_t window_length);

    /// Forgets all events. The counter is then as after construction.
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
