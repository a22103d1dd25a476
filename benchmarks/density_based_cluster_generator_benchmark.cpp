// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr std::size_t kCapacity = 100'000;
constexpr double kEps = 5;
constexpr int kMinPts = 10;

template <int DIM>
using Generator = DensityBasedClusterGenerator<DIM, float>;

template <int DIM>
Generator<DIM> build(const SensorSize& sensor) {
    constexpr unsigned long long kWindow = 10'000'000;
    return Generator<DIM>(sensor.width, sensor.height, 1.0F, 1.0F, 0.001F, POLARITY_FREE, kCapacity,
                          kWindow, kEps, kMinPts, 1);
}

template <int DIM>
void feed(Generator<DIM>& generator, const std::vector<Event2D>& events) {
    for (const Event2D& event : events) {
        generator.processEvent(&event);
    }
}

/// Time of `processEvent`, the buffers being reserved and never full.
template <int DIM>
void intake(benchmark::State& state, const SensorSize& sensor) {
    const auto events = simulatedEvents(sensor, kCapacity);
    auto generator = build<DIM>(sensor);
    // The buffers stay as they are, but to empty them takes no clustering.
    generator.setMaxCapacity(1);
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
void generation(benchmark::State& state, const SensorSize& sensor) {
    const auto events = simulatedEvents(sensor, static_cast<std::size_t>(state.range(0)));
    auto generator = build<DIM>(sensor);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        feed<DIM>(generator, events);
        state.ResumeTiming();
        generator.generateClusters(0, clusters);
    }
    if (clusters.empty()) {
        state.SkipWithError("no cluster was found");
    }
    state.counters["clusters"] = static_cast<double>(clusters.size());
}

void batches(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("events")->Arg(1'000)->Arg(10'000)->Arg(50'000)->Unit(
        benchmark::kMillisecond);
}

constexpr auto intake_2d = intake<2>;
constexpr auto intake_3d = intake<3>;
constexpr auto generation_2d = generation<2>;
constexpr auto generation_3d = generation<3>;

BENCHMARK_CAPTURE(intake_2d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(intake_2d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(intake_3d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(intake_3d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(generation_2d, 640x480, kSmallSensor)->Apply(batches);
BENCHMARK_CAPTURE(generation_2d, 1280x720, kLargeSensor)->Apply(batches);
BENCHMARK_CAPTURE(generation_3d, 640x480, kSmallSensor)->Apply(batches);
BENCHMARK_CAPTURE(generation_3d, 1280x720, kLargeSensor)->Apply(batches);

}  // namespace
}  // namespace kelvora::benchmarks
