// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/sliding_event_counter.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr std::size_t kEventCount = 200'000;
constexpr std::size_t kWindow = 10'000;  // microseconds
constexpr std::size_t kBins = 100;

std::vector<Event2D> slowedEvents(std::uint64_t slowdown) {
    auto events = simulatedEvents(kSmallSensor, kEventCount);
    for (Event2D& event : events) {
        event.timestamp *= slowdown;
    }
    return events;
}

void report(benchmark::State& state, const SlidingEventCounter& counter) {
    const auto processed =
        static_cast<double>(state.iterations()) * static_cast<double>(kEventCount);
    state.counters["per_event"] =
        benchmark::Counter(processed, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["counted"] = static_cast<double>(counter.getEventCount());
}

/// \param slowdown  Factor for all times: with 1, gaps are shorter than a bin of 100 microseconds,
///     and all but a few events only increment.
void addEvent(benchmark::State& state, std::uint64_t slowdown) {
    const auto events = slowedEvents(slowdown);
    SlidingEventCounter counter(kWindow, kBins);
    for ([[maybe_unused]] auto iteration : state) {
        for (const Event2D& event : events) {
            counter.addEvent(&event);
        }
        benchmark::DoNotOptimize(counter.getEventCount());
    }
    report(state, counter);
}

/// The same with all times in one call.
void addTimestamps(benchmark::State& state, std::uint64_t slowdown) {
    std::vector<unsigned long long> timestamps;
    for (const Event2D& event : slowedEvents(slowdown)) {
        timestamps.push_back(event.timestamp);
    }
    SlidingEventCounter counter(kWindow, kBins);
    for ([[maybe_unused]] auto iteration : state) {
        counter.addTimestamps(timestamps.data(), timestamps.size());
        benchmark::DoNotOptimize(counter.getEventCount());
    }
    report(state, counter);
}

BENCHMARK_CAPTURE(addEvent, dense_stream, 1);
BENCHMARK_CAPTURE(addTimestamps, dense_stream, 1);
BENCHMARK_CAPTURE(addEvent, sparse_stream, 1000);
BENCHMARK_CAPTURE(addTimestamps, sparse_stream, 1000);

}  // namespace
}  // namespace kelvora::benchmarks
