// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <vector>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/literal_point_intake.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr std::size_t kCapacity = 100'000;
constexpr std::size_t kWindow = 10'000'000;  // microseconds
constexpr float kScaleTime = 0.001F;
constexpr double kEps = 5;
constexpr int kMinPts = 10;

template <int DIM>
using Generator = DensityBasedClusterGenerator<DIM, float>;

template <int DIM>
Generator<DIM> build(const SensorSize& sensor, int min_pts = kMinPts) {
    return Generator<DIM>(sensor.width, sensor.height, 1.0F, 1.0F, kScaleTime, POLARITY_FREE,
                          kCapacity, kWindow, kEps, min_pts, 1);
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

/// Whether library and model make the same points: with a density of one, every event is in a cluster.
template <int DIM, Feed<Generator<DIM>> feed>
bool modelAgrees(const std::vector<Event2D>& events, const SensorSize& sensor) {
    constexpr std::ptrdiff_t kSome = 2'000;
    const std::vector<Event2D> some(events.begin(), events.begin() + kSome);
    auto generator = build<DIM>(sensor, 1);
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
void intake(benchmark::State& state, const SensorSize& sensor) {
    const auto events = simulatedEvents(sensor, kCapacity);
    if (!modelAgrees<DIM, feed>(events, sensor)) {
        state.SkipWithError("library and model make different points");
        return;
    }
    auto generator = build<DIM>(sensor);
    // The buffers stay as they are, but to empty them takes no clustering.
    generator.setMaxCapacity(1);
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
void literalIntake(benchmark::State& state, const SensorSize& sensor) {
    const auto events = simulatedEvents(sensor, kCapacity);
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

constexpr auto literal_intake_2d = literalIntake<2>;
constexpr auto literal_intake_3d = literalIntake<3>;
constexpr auto intake_2d = intake<2, feedOneByOne>;
constexpr auto intake_3d = intake<3, feedOneByOne>;
constexpr auto batch_intake_2d = intake<2, feedBatch<2>>;
constexpr auto batch_intake_3d = intake<3, feedBatch<3>>;
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
