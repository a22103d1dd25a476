// SPDX-License-Identifier: MIT
#include "kelvora/sliding_event_counter.hpp"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace kelvora {

namespace {

std::size_t effectiveBins(std::size_t window_length, std::size_t num_bins) {
    if (window_length == 0) {
        throw std::invalid_argument("SlidingEventCounter: window_length must be larger than 0");
    }
    if (num_bins == 0) {
        throw std::invalid_argument("SlidingEventCounter: num_bins must be larger than 0");
    }
    return std::min(window_length, num_bins);
}

std::size_t binLength(std::size_t window_length, std::size_t bins) {
    const double length = static_cast<double>(window_length) / static_cast<double>(bins);
    // The largest windows round up to 2^64, which does not fit into 64 bits.
    constexpr double kTooLong = 18446744073709551616.0;
    if (length >= kTooLong) {
        return std::numeric_limits<std::size_t>::max();
    }
    return std::max<std::size_t>(static_cast<std::size_t>(length), 1);
}

}  // namespace

SlidingEventCounter::SlidingEventCounter(std::size_t window_length_, std::size_t num_bins)
    : bins(effectiveBins(window_length_, num_bins), 0),
      bin_length(binLength(window_length_, bins.size())),
      window_length(window_length_) {}

SlidingEventCounter::SlidingEventCounter(const SlidingEventCounter&) = default;
SlidingEventCounter& SlidingEventCounter::operator=(const SlidingEventCounter&) = default;
SlidingEventCounter::SlidingEventCounter(SlidingEventCounter&&) noexcept = default;
SlidingEventCounter& SlidingEventCounter::operator=(SlidingEventCounter&&) noexcept = default;
SlidingEventCounter::~SlidingEventCounter() = default;

template <class EventT>
void SlidingEventCounter::addEvent(const EventT* event) {
    if (event == nullptr) {
        throw std::invalid_argument("SlidingEventCounter: null event pointer");
    }
    addTimestamp(event->timestamp);
}

void SlidingEventCounter::addTimestamp(std::uint64_t timestamp) {
    if (first_event) {
        first_event = false;
    } else {
        // Wraps for an event older than the last one.
        const std::uint64_t elapsed = timestamp - last_timestamp;
        if (elapsed >= bin_length) {
            advance(elapsed);
        }
    }
    last_timestamp = timestamp;
    if (bins[current_bin] < std::numeric_limits<std::uint32_t>::max()) {
        ++bins[current_bin];
        ++event_count;
    }
}

void SlidingEventCounter::addTimestamps(const unsigned long long* timestamps, std::size_t count) {
    if (timestamps == nullptr && count > 0) {
        throw std::invalid_argument("SlidingEventCounter: null pointer to timestamps");
    }
    std::size_t i = 0;
    while (i < count) {
        addTimestamp(timestamps[i]);
        ++i;
        // All events before the next gap of at least a bin go into the same bin.
        const std::size_t run_begin = i;
        while (i < count && timestamps[i] - timestamps[i - 1] < bin_length) {
            ++i;
        }
        last_timestamp = timestamps[i - 1];
        countInBin(i - run_begin);
    }
}

/// Adds events to the current bin, as many as it can hold.
void SlidingEventCounter::countInBin(std::size_t events) {
    std::uint32_t& bin = bins[current_bin];
    const std::size_t room = std::numeric_limits<std::uint32_t>::max() - bin;
    const auto counted = static_cast<std::uint32_t>(std::min(events, room));
    bin += counted;
    event_count += counted;
}

void SlidingEventCounter::advance(std::uint64_t elapsed) {
    const std::size_t n = bins.size();
    const std::uint64_t steps = elapsed / bin_length;
    if (elapsed >= window_length) {
        std::fill(bins.begin(), bins.end(), 0);
        event_count = 0;
    } else {
        std::size_t bin = current_bin;
        for (std::size_t cleared = 0; cleared < std::min<std::uint64_t>(n, steps); ++cleared) {
            bin = bin + 1 < n ? bin + 1 : 0;
            event_count -= bins[bin];
            bins[bin] = 0;
        }
    }
    current_bin = (current_bin + steps % n) % n;
}

std::size_t SlidingEventCounter::getEventCount() const {
    return event_count;
}

// Not const: part of the interface.
// NOLINTNEXTLINE(readability-make-member-function-const)
bool SlidingEventCounter::setWindowLength(std::size_t window_length_) {
    return window_length_ != 0 && window_length_ >= bins.size();
}

void SlidingEventCounter::reset() {
    std::fill(bins.begin(), bins.end(), 0);
    current_bin = 0;
    last_timestamp = 0;
    event_count = 0;
    first_event = true;
}

template void SlidingEventCounter::addEvent(const Event2D*);
template void SlidingEventCounter::addEvent(const Event2DFrequency*);
template void SlidingEventCounter::addEvent(const Event2DPeriod<int>*);
template void SlidingEventCounter::addEvent(const Event2DPeriod<unsigned int>*);
template void SlidingEventCounter::addEvent(const Event2DPeriod<float>*);
template void SlidingEventCounter::addEvent(const Event2DPeriod<double>*);
template void SlidingEventCounter::addEvent(const Event2DPeriod<long long>*);
template void SlidingEventCounter::addEvent(const Event2DPeriod<unsigned long long>*);

}  // namespace kelvora
