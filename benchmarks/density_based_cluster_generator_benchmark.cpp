// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/point_intake.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr double kEps = 5;
constexpr int kMinPts = 10;

template <int DIM>
using Generator = DensityBasedClusterGenerator<DIM, float>;

template <int DIM>
Generator<DIM> build(const SensorSize& sensor, int min_pts = kMinPts) {
    return Generator<DIM>(sensor.width, sensor.height, 1.0F, 1.0F, kScaleTime, POLARITY_FREE,
                          kCapacity, kWindow, kEps, min_pts, 1);
}

/// Time of feeding the events.
template <int DIM, Feed<Generator<DIM>> feed>
void intake(benchmark::State& state, const SensorSize& sensor) {
    const auto events = simulatedEvents(sensor, kCapacity);
    constexpr int kEveryPointIsDense = 1;
    if (!modelAgrees<DIM>(build<DIM>(sensor, kEveryPointIsDense), feed, events)) {
        state.SkipWithError("library and model make different points");
        return;
    }
    auto generator = build<DIM>(sensor);
    generator.setMaxCapacity(1);
    timeIntake(state, generator, feed, events);
}

/// Time of `generateClusters`, without the time to feed the events.
template <int DIM>
void generation(benchmark::State& state, const SensorSize& sensor) {
    const auto events = simulatedEvents(sensor, static_cast<std::size_t>(state.range(0)));
    auto generator = build<DIM>(sensor);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        state.PauseTiming();
        feedOneByOne(generator, events);
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

constexpr auto literal_intake_2d = timeLiteralIntake<2>;
constexpr auto literal_intake_3d = timeLiteralIntake<3>;
constexpr auto intake_2d = intake<2, feedOneByOne>;
constexpr auto intake_3d = intake<3, feedOneByOne>;
constexpr auto batch_intake_2d = intake<2, feedBatch>;
constexpr auto batch_intake_3d = intake<3, feedBatch>;
constexpr auto generation_2d = generation<2>;
constexpr auto generation_3d = generation<3>;

BENCHMARK_CAPTURE(literal_intake_2d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(intake_2d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(batch_intake_2d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(literal_intake_2d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(intake_2d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(batch_intake_2d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(literal_intake_3d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(intake_3d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(batch_intake_3d, 640x480, kSmallSensor);
BENCHMARK_CAPTURE(literal_intake_3d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(intake_3d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(batch_intake_3d, 1280x720, kLargeSensor);
BENCHMARK_CAPTURE(generation_2d, 640x480, kSmallSensor)->Apply(batches);
BENCHMARK_CAPTURE(generation_2d, 1280x720, kLargeSensor)->Apply(batches);
BENCHMARK_CAPTURE(generation_3d, 640x480, kSmallSensor)->Apply(batches);
BENCHMARK_CAPTURE(generation_3d, 1280x720, kLargeSensor)->Apply(batches);

}  // namespace
}  // namespace kelvora::benchmarks
