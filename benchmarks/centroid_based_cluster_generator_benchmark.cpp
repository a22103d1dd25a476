// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/point_intake.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr unsigned long long kIterations = 20;

template <int DIM>
using Generator = CentroidBasedClusterGenerator<DIM, float>;

/// With a tolerance that never ends the iterations early: each run takes all of them.
template <int DIM>
Generator<DIM> build(unsigned long long k) {
    return Generator<DIM>(kSmallSensor.width, kSmallSensor.height, 1.0F, 1.0F, kScaleTime,
                          POLARITY_FREE, kCapacity, kWindow, k, kIterations,
                          std::numeric_limits<double>::quiet_NaN());
}

/// Time of feeding the events.
template <int DIM, Feed<Generator<DIM>> feed>
void intake(benchmark::State& state) {
    const auto events = simulatedEvents(kSmallSensor, kCapacity);
    constexpr unsigned long long kOneCluster = 1;
    if (!modelAgrees<DIM>(build<DIM>(kOneCluster), feed, events)) {
        state.SkipWithError("library and model make different points");
        return;
    }
    auto generator = build<DIM>(kOneCluster);
    generator.setMaxCapacity(0);
    timeIntake(state, generator, feed, events);
}

template <int DIM>
void literalIntake(benchmark::State& state) {
    timeLiteralIntake<DIM>(state, kSmallSensor);
}

/// Time of `generateClusters`, without the time to feed the events.
template <int DIM>
void generation(benchmark::State& state) {
    const auto events = simulatedEvents(kSmallSensor, static_cast<std::size_t>(state.range(0)));
    const auto k = static_cast<unsigned long long>(state.range(1));
    auto generator = build<DIM>(k);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        feedOneByOne(generator, events);
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

BENCHMARK_TEMPLATE(literalIntake, 2);
BENCHMARK_TEMPLATE(intake, 2, feedOneByOne);
BENCHMARK_TEMPLATE(intake, 2, feedBatch);
BENCHMARK_TEMPLATE(literalIntake, 3);
BENCHMARK_TEMPLATE(intake, 3, feedOneByOne);
BENCHMARK_TEMPLATE(intake, 3, feedBatch);
BENCHMARK_TEMPLATE(generation, 2)->Apply(batches);
BENCHMARK_TEMPLATE(generation, 3)->Apply(batches);

}  // namespace
}  // namespace kelvora::benchmarks
