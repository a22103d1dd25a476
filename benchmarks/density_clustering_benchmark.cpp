// SPDX-License-Identifier: MIT
// Both passes of the density clustering, one job and two, over the first events of a scene. The
// building of the tree is part of it.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/density_clustering.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr int kMinPts = 10;

template <int DIM>
void clusterPoints(benchmark::State& state, const SensorSize& sensor) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto eps = static_cast<double>(state.range(1));
    const auto jobs = static_cast<unsigned char>(state.range(2));
    const auto points = pointsOf<DIM>(simulatedEvents(sensor, n));
    DensityClustering<DIM, float> clustering(eps, kMinPts);
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<float>> boxes;
    for ([[maybe_unused]] auto iteration : state) {
        clustering.generateClustersMultiThread(points, clusters, boxes, jobs);
        benchmark::DoNotOptimize(clusters.data());
    }
    if (points.size() != n || clusters.empty()) {
        state.SkipWithError("too few events, or nothing found");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["clusters"] = static_cast<double>(clusters.size());
}

void sizes(benchmark::internal::Benchmark* benchmark, const std::vector<std::int64_t>& radii) {
    benchmark->ArgNames({"events", "eps", "jobs"})
        ->ArgsProduct({{10'000, 50'000, 200'000}, radii, {1, 2}})
        ->Unit(benchmark::kMillisecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime();
}

void sizesInPlane(benchmark::internal::Benchmark* benchmark) {
    sizes(benchmark, {3, 5});
}

void sizesInSpaceAndTime(benchmark::internal::Benchmark* benchmark) {
    sizes(benchmark, {5});
}

constexpr auto cluster_points_2d = clusterPoints<2>;
constexpr auto cluster_points_3d = clusterPoints<3>;

BENCHMARK_CAPTURE(cluster_points_2d, 640x480, kSmallSensor)->Apply(sizesInPlane);
BENCHMARK_CAPTURE(cluster_points_2d, 1280x720, kLargeSensor)->Apply(sizesInPlane);
BENCHMARK_CAPTURE(cluster_points_3d, 640x480, kSmallSensor)->Apply(sizesInSpaceAndTime);
BENCHMARK_CAPTURE(cluster_points_3d, 1280x720, kLargeSensor)->Apply(sizesInSpaceAndTime);

}  // namespace
}  // namespace kelvora::benchmarks
