// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "kelvora/events.hpp"
#include "reference/feeding.hpp"

namespace kelvora::benchmarks {

template <class Receiver>
using Feed = void (*)(Receiver&, const std::vector<Event2D>&);

using reference::feedOneByOne;

template <class Receiver>
void feedBatch(Receiver& receiver, const std::vector<Event2D>& events) {
    receiver.processEvents(events.data(), events.size());
}

/// Reports the time per event of a benchmark that takes so many of them in each iteration.
inline void reportPerEvent(benchmark::State& state, std::size_t events) {
    const auto processed = static_cast<double>(state.iterations()) * static_cast<double>(events);
    state.counters["per_event"] =
        benchmark::Counter(processed, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

}  // namespace kelvora::benchmarks
