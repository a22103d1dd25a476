// SPDX-License-Identifier: MIT
// Building the tree, and searching it around each of its points.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/kd_tree.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

void reportPerPoint(benchmark::State& state, std::size_t points) {
    const auto processed = static_cast<double>(state.iterations()) * static_cast<double>(points);
    state.counters["per_point"] =
        benchmark::Counter(processed, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

template <int DIM>
void build(benchmark::State& state, const SensorSize& sensor) {
    const auto points =
        pointsOf<DIM>(simulatedEvents(sensor, static_cast<std::size_t>(state.range(0))));
    KDTree<DIM, float> tree;
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(tree.build(points, 1));
    }
    reportPerPoint(state, points.size());
}

template <int DIM>
void radiusSearch(benchmark::State& state, const SensorSize& sensor) {
    const auto points =
        pointsOf<DIM>(simulatedEvents(sensor, static_cast<std::size_t>(state.range(0))));
    const auto radius = static_cast<float>(state.range(1));
    KDTree<DIM, float> tree;
    tree.build(points, 1);
    std::vector<nanoflann::ResultItem<std::size_t, float>> neighbours;
    std::size_t found = 0;
    for ([[maybe_unused]] auto iteration : state) {
        found = 0;
        for (std::size_t i = 0; i < points.size(); ++i) {
            found += tree.radiusSearchIndex(radius, neighbours, false, i);
        }
        benchmark::DoNotOptimize(found);
    }
    if (found < points.size()) {
        state.SkipWithError("points did not find themselves");
    }
    reportPerPoint(state, points.size());
    state.counters["neighbours"] = static_cast<double>(found) / static_cast<double>(points.size());
}

const std::vector<std::int64_t> kEventCounts = {10'000, 50'000, 200'000};

void buildSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("events")->ArgsProduct({kEventCounts})->Unit(benchmark::kMillisecond);
}

void searchSizesInPlane(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"events", "radius"})
        ->ArgsProduct({kEventCounts, {3, 5}})
        ->Unit(benchmark::kMillisecond);
}

void searchSizesInSpaceAndTime(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"events", "radius"})
        ->ArgsProduct({kEventCounts, {5}})
        ->Unit(benchmark::kMillisecond);
}

constexpr auto build_2d = build<2>;
constexpr auto build_3d = build<3>;
constexpr auto radius_search_2d = radiusSearch<2>;
constexpr auto radius_search_3d = radiusSearch<3>;

BENCHMARK_CAPTURE(build_2d, 640x480, kSmallSensor)->Apply(buildSizes);
BENCHMARK_CAPTURE(build_2d, 1280x720, kLargeSensor)->Apply(buildSizes);
BENCHMARK_CAPTURE(build_3d, 640x480, kSmallSensor)->Apply(buildSizes);
BENCHMARK_CAPTURE(build_3d, 1280x720, kLargeSensor)->Apply(buildSizes);
BENCHMARK_CAPTURE(radius_search_2d, 640x480, kSmallSensor)->Apply(searchSizesInPlane);
BENCHMARK_CAPTURE(radius_search_2d, 1280x720, kLargeSensor)->Apply(searchSizesInPlane);
BENCHMARK_CAPTURE(radius_search_3d, 640x480, kSmallSensor)->Apply(searchSizesInSpaceAndTime);
BENCHMARK_CAPTURE(radius_search_3d, 1280x720, kLargeSensor)->Apply(searchSizesInSpaceAndTime);

}  // namespace
}  // namespace kelvora::benchmarks
