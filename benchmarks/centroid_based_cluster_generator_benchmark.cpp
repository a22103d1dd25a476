// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr std::size_t kCapacity = 100'000;
constexpr unsigned long long kIterations = 20;

template <int DIM>
using Generator = CentroidBasedClusterGenerator<DIM, float>;

/// With a tolerance that never ends the iterations early: each run takes all of them.
template <int DIM>
Generator<DIM> build(unsigned long long k) {
    constexpr unsigned long long kWindow = 10'000'000;
    return Generator<DIM>(kSmallSensor.width, kSmallSensor.height, 1.0F, 1.0F, 0.001F,
                          POLARITY_FREE, kCapacity, kWindow, k, kIterations,
                          std::numeric_limits<double>::quiet_NaN());
}

template <int DIM>
void feed(Generator<DIM>& generator, const std::vector<Event2D>& events) {
    for (const Event2D& event : events) {
        generator.processEvent(&event);
    }
}

/// Time of `processEvent`, the buffers being reserved and never full.
template <int DIM>
void intake(benchmark::State& state) {
    const auto events = simulatedEvents(kSmallSensor, kCapacity);
    auto generator = build<DIM>(1);
    // The buffers stay as they are, but to empty them takes no clustering.
    generator.setMaxCapacity(0);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        feed<DIM>(generator, events);
        state.PauseTiming();
        generator.generateClusters(0, clusters);
        state.ResumeTiming();
    }
    const auto processed =
        static_cast<double>(state.iterations()) * static_cast<double>(events.size());
    state.counters["per_event"] =
        benchmark::Counter(processed, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// Time of `generateClusters`, without that of feeding the events.
template <int DIM>
void generation(benchmark::State& state) {
    const auto events = simulatedEvents(kSmallSensor, static_cast<std::size_t>(state.range(0)));
    const auto k = static_cast<unsigned long long>(state.range(1));
    auto generator = build<DIM>(k);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        feed<DIM>(generator, events);
        state.ResumeTiming();
        generator.generateClusters(0, clusters);
    }
    std::vector<unsigned long long> sizes;
    generator.getClusterSizes(sizes);
    std::uint64_t clustered = 0;
    for (const unsigned long long size : sizes) {
        clustered += size;
    }
    if (clusters.size() != k || clustered != events.size()) {
        state.SkipWithError("clusters or events are missing");
    }
}

void batches(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"events", "k"})
        ->ArgsProduct({{1'000, 10'000, 50'000}, {12, 128}})
        ->Unit(benchmark::kMillisecond);
}

BENCHMARK_TEMPLATE(intake, 2);
BENCHMARK_TEMPLATE(intake, 3);
BENCHMARK_TEMPLATE(generation, 2)->Apply(batches);
BENCHMARK_TEMPLATE(generation, 3)->Apply(batches);

}  // namespace
}  // namespace kelvora::benchmarks
