// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/literal_point_intake.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr std::size_t kCapacity = 100'000;
constexpr std::size_t kWindow = 10'000'000;  // microseconds
constexpr float kScaleTime = 0.001F;
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

template <class Receiver>
void feedOneByOne(Receiver& receiver, const std::vector<Event2D>& events) {
    for (const Event2D& event : events) {
        receiver.processEvent(&event);
    }
}

template <int DIM>
void feedBatch(Generator<DIM>& generator, const std::vector<Event2D>& events) {
    generator.processEvents(events.data(), events.size());
}

template <class Receiver>
using Feed = void (*)(Receiver&, const std::vector<Event2D>&);

void reportPerEvent(benchmark::State& state, std::size_t events) {
    const auto processed = static_cast<double>(state.iterations()) * static_cast<double>(events);
    state.counters["per_event"] =
        benchmark::Counter(processed, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

/// Whether library and model make the same points: with one cluster, every event is in it.
template <int DIM, Feed<Generator<DIM>> feed>
bool modelAgrees(const std::vector<Event2D>& events) {
    constexpr std::ptrdiff_t kSome = 2'000;
    const std::vector<Event2D> some(events.begin(), events.begin() + kSome);
    auto generator = build<DIM>(1);
    LiteralPointIntake<DIM> model(kCapacity, kWindow, kScaleTime);
    feed(generator, some);
    feedOneByOne(model, some);
    std::vector<ClusterGeometry> clusters;
    std::vector<std::vector<KDPoint<DIM, float>>> points;
    generator.generateClusters(0, clusters);
    generator.getClusterPoints(points, false);
    return model.agreesWith(points);
}

/// Time of feeding the events, the buffers being reserved and never full.
template <int DIM, Feed<Generator<DIM>> feed>
void intake(benchmark::State& state) {
    const auto events = simulatedEvents(kSmallSensor, kCapacity);
    if (!modelAgrees<DIM, feed>(events)) {
        state.SkipWithError("library and model make different points");
        return;
    }
    auto generator = build<DIM>(1);
    // The buffers stay as they are, but to empty them takes no clustering.
    generator.setMaxCapacity(0);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        feed(generator, events);
        state.PauseTiming();
        generator.generateClusters(0, clusters);
        state.ResumeTiming();
    }
    reportPerEvent(state, events.size());
}

/// The same of the literal model.
template <int DIM>
void literalIntake(benchmark::State& state) {
    const auto events = simulatedEvents(kSmallSensor, kCapacity);
    LiteralPointIntake<DIM> model(kCapacity, kWindow, kScaleTime);
    for ([[maybe_unused]] auto iteration : state) {
        feedOneByOne(model, events);
        state.PauseTiming();
        benchmark::DoNotOptimize(model.getEventCount());
        model.clearPoints();
        state.ResumeTiming();
    }
    reportPerEvent(state, events.size());
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
BENCHMARK_TEMPLATE(intake, 2, feedBatch<2>);
BENCHMARK_TEMPLATE(literalIntake, 3);
BENCHMARK_TEMPLATE(intake, 3, feedOneByOne);
BENCHMARK_TEMPLATE(intake, 3, feedBatch<3>);
BENCHMARK_TEMPLATE(generation, 2)->Apply(batches);
BENCHMARK_TEMPLATE(generation, 3)->Apply(batches);

}  // namespace
}  // namespace kelvora::benchmarks
