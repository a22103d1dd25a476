// SPDX-License-Identifier: MIT
// Density clustering by the library and by a literal model, in turn, on the first events of
// simulated scenes and of recordings. The building of the tree is part of it. Figures are the
// medians of both, in milliseconds, and their ratio: of processor time for one job, of time on the
// wall for two.
//
// Recordings are looked for in the directory that KELVORA_RECORDINGS names.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "kelvora/density_clustering.hpp"
#include "reference/density_clustering.hpp"
#include "support/clock.hpp"
#include "support/recordings.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr int kMinPts = 10;

double wallMilliseconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double, std::milli>(now).count();
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Clusters and boxes, and the time to find them.
struct Run {
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<float>> boxes;
    std::vector<double> milliseconds;

    template <class Cluster>
    void time(int jobs, Cluster cluster) {
        const auto now = jobs == 1 ? processorMilliseconds : wallMilliseconds;
        const double start = now();
        cluster(clusters, boxes, static_cast<unsigned char>(jobs));
        milliseconds.push_back(now() - start);
    }

    /// Clusters with several jobs come in any order.
    std::vector<std::pair<std::vector<std::size_t>, std::vector<float>>> found(int jobs) const {
        std::vector<std::pair<std::vector<std::size_t>, std::vector<float>>> result;
        for (std::size_t i = 0; i < clusters.size(); ++i) {
            result.emplace_back(clusters[i], boxes[i]);
        }
        if (jobs > 1) {
            std::sort(result.begin(), result.end());
        }
        return result;
    }
};

template <int DIM>
void compare(benchmark::State& state, const std::vector<Event2D>& events) {
    const auto eps = static_cast<double>(state.range(1));
    const auto jobs = static_cast<int>(state.range(2));
    if (events.empty()) {
        state.SkipWithError("no such recording: set KELVORA_RECORDINGS to a directory with it");
        return;
    }
    const auto points = pointsOf<DIM>(events);
    DensityClustering<DIM, float> clustering(eps, kMinPts);
    reference::DensityClustering<DIM, float> literal_clustering(eps, kMinPts);
    Run library;
    Run literal;
    for ([[maybe_unused]] auto iteration : state) {
        library.time(jobs, [&](auto& clusters, auto& boxes, unsigned char n_jobs) {
            clustering.generateClustersMultiThread(points, clusters, boxes, n_jobs);
        });
        literal.time(jobs, [&](auto& clusters, auto& boxes, unsigned char n_jobs) {
            literal_clustering.generateClusters(points, clusters, boxes, n_jobs);
        });
    }
    if (library.found(jobs) != literal.found(jobs)) {
        state.SkipWithError("the library does not find the clusters of the model");
    }
    const double library_ms = median(library.milliseconds);
    const double literal_ms = median(literal.milliseconds);
    state.counters["clusters"] = static_cast<double>(library.clusters.size());
    state.counters["library_ms"] = library_ms;
    state.counters["literal_ms"] = literal_ms;
    state.counters["ratio"] = library_ms / literal_ms;
}

template <int DIM>
void compareInScene(benchmark::State& state, const SensorSize& sensor) {
    compare<DIM>(state, simulatedEvents(sensor, static_cast<std::size_t>(state.range(0))));
}

template <int DIM>
void compareInRecording(benchmark::State& state, const std::string& name) {
    compare<DIM>(state, recordedEvents(name, static_cast<std::size_t>(state.range(0))));
}

/// All events in a block of `side` x `side` pixels, in a random order.
template <int DIM>
void compareInBlock(benchmark::State& state, int side) {
    compare<DIM>(state, flickeringBlock(side, static_cast<std::size_t>(state.range(0))));
}

/// One job alone, with more points in a block than the model could cluster.
template <int DIM>
void clusterBlock(benchmark::State& state, int side) {
    const auto points =
        pointsOf<DIM>(flickeringBlock(side, static_cast<std::size_t>(state.range(0))));
    DensityClustering<DIM, float> clustering(static_cast<double>(state.range(1)), kMinPts);
    Run library;
    for ([[maybe_unused]] auto iteration : state) {
        library.time(1, [&](auto& clusters, auto& boxes, unsigned char n_jobs) {
            clustering.generateClustersMultiThread(points, clusters, boxes, n_jobs);
        });
    }
    state.counters["clusters"] = static_cast<double>(library.clusters.size());
    state.counters["library_ms"] = median(library.milliseconds);
}

/// The exponent with which the time of two jobs grows from ten thousand to a million events.
template <int DIM>
void growth(benchmark::State& state, const SensorSize& sensor) {
    const auto points = pointsOf<DIM>(simulatedEvents(sensor, 1'000'000));
    std::vector<double> exponents;
    std::vector<double> milliseconds;
    for ([[maybe_unused]] auto iteration : state) {
        Run few;
        Run many;
        for (Run* run : {&few, &many}) {
            const std::size_t n = run == &few ? 10'000 : points.size();
            const std::vector<KDPoint<DIM, float>> first(
                points.begin(), points.begin() + static_cast<std::ptrdiff_t>(n));
            DensityClustering<DIM, float> clustering(static_cast<double>(state.range(0)), kMinPts);
            for (int i = 0; i < 5; ++i) {
                run->time(2, [&](auto& clusters, auto& boxes, unsigned char n_jobs) {
                    clustering.generateClustersMultiThread(first, clusters, boxes, n_jobs);
                });
            }
        }
        milliseconds.push_back(median(many.milliseconds));
        exponents.push_back(std::log10(median(many.milliseconds) / median(few.milliseconds)) / 2);
    }
    state.counters["million_ms"] = median(milliseconds);
    state.counters["exponent"] = median(exponents);
}

using Benchmark = benchmark::internal::Benchmark;

void cases(Benchmark* benchmark, const std::vector<std::int64_t>& events,
           const std::vector<std::int64_t>& radii) {
    benchmark->ArgNames({"events", "eps", "jobs"})
        ->ArgsProduct({events, radii, {1, 2}})
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

void small2d(Benchmark* benchmark) {
    cases(benchmark, {100, 500, 2000}, {3, 5});
}
void small3d(Benchmark* benchmark) {
    cases(benchmark, {100, 500, 2000}, {5});
}
void scene2d(Benchmark* benchmark) {
    cases(benchmark, {10'000, 50'000, 200'000}, {3, 5});
    benchmark->Iterations(3);
}
void scene3d(Benchmark* benchmark) {
    cases(benchmark, {10'000, 50'000, 200'000}, {5});
    benchmark->Iterations(5);
}
// More events of them have too many neighbours in the plane for the model's lists.
void recording2d(Benchmark* benchmark) {
    cases(benchmark, {50'000}, {3, 5});
    benchmark->Iterations(3);
}
void recording3d(Benchmark* benchmark) {
    cases(benchmark, {50'000, 200'000}, {5});
    benchmark->Iterations(3);
}
void block(Benchmark* benchmark) {
    cases(benchmark, {5000}, {5});
    benchmark->Iterations(3);
}
void largeBlock(Benchmark* benchmark) {
    benchmark->ArgNames({"events", "eps"})
        ->ArgsProduct({{40'000, 400'000}, {10}})
        ->Unit(benchmark::kMillisecond)
        ->Iterations(3);
}
void growth2d(Benchmark* benchmark) {
    benchmark->ArgName("eps")->Arg(3)->Arg(5)->Unit(benchmark::kMillisecond)->Iterations(1);
}
void growth3d(Benchmark* benchmark) {
    benchmark->ArgName("eps")->Arg(5)->Unit(benchmark::kMillisecond)->Iterations(1);
}

constexpr auto small_2d = compareInScene<2>;
constexpr auto small_3d = compareInScene<3>;
constexpr auto scene_2d = compareInScene<2>;
constexpr auto scene_3d = compareInScene<3>;
constexpr auto recording_2d = compareInRecording<2>;
constexpr auto recording_3d = compareInRecording<3>;
constexpr auto block_2d = compareInBlock<2>;
constexpr auto block_3d = compareInBlock<3>;
constexpr auto large_block_2d = clusterBlock<2>;
constexpr auto growth_2d = growth<2>;
constexpr auto growth_3d = growth<3>;

BENCHMARK_CAPTURE(small_2d, 640x480, kSmallSensor)->Apply(small2d);
BENCHMARK_CAPTURE(small_3d, 640x480, kSmallSensor)->Apply(small3d);
BENCHMARK_CAPTURE(scene_2d, 640x480, kSmallSensor)->Apply(scene2d);
BENCHMARK_CAPTURE(scene_2d, 1280x720, kLargeSensor)->Apply(scene2d);
BENCHMARK_CAPTURE(scene_3d, 640x480, kSmallSensor)->Apply(scene3d);
BENCHMARK_CAPTURE(scene_3d, 1280x720, kLargeSensor)->Apply(scene3d);
BENCHMARK_CAPTURE(recording_2d, street, "gen41_street")->Apply(recording2d);
BENCHMARK_CAPTURE(recording_2d, sparklers, "gen3_sparklers")->Apply(recording2d);
BENCHMARK_CAPTURE(recording_2d, cars, "atis304_cars")->Apply(recording2d);
BENCHMARK_CAPTURE(recording_3d, street, "gen41_street")->Apply(recording3d);
BENCHMARK_CAPTURE(recording_3d, sparklers, "gen3_sparklers")->Apply(recording3d);
BENCHMARK_CAPTURE(recording_3d, cars, "atis304_cars")->Apply(recording3d);
// From 5000 neighbours of each point in one pixel to about 100 in 64 x 64 pixels.
BENCHMARK_CAPTURE(block_2d, 1x1, 1)->Apply(block);
BENCHMARK_CAPTURE(block_2d, 8x8, 8)->Apply(block);
BENCHMARK_CAPTURE(block_2d, 32x32, 32)->Apply(block);
BENCHMARK_CAPTURE(block_2d, 64x64, 64)->Apply(block);
BENCHMARK_CAPTURE(block_3d, 1x1, 1)->Apply(block);
BENCHMARK_CAPTURE(block_3d, 8x8, 8)->Apply(block);
BENCHMARK_CAPTURE(large_block_2d, 1x1, 1)->Apply(largeBlock);
BENCHMARK_CAPTURE(large_block_2d, 8x8, 8)->Apply(largeBlock);
BENCHMARK_CAPTURE(large_block_2d, 16x16, 16)->Apply(largeBlock);
BENCHMARK_CAPTURE(growth_2d, 640x480, kSmallSensor)->Apply(growth2d);
BENCHMARK_CAPTURE(growth_2d, 1280x720, kLargeSensor)->Apply(growth2d);
BENCHMARK_CAPTURE(growth_3d, 640x480, kSmallSensor)->Apply(growth3d);
BENCHMARK_CAPTURE(growth_3d, 1280x720, kLargeSensor)->Apply(growth3d);

}  // namespace
}  // namespace kelvora::benchmarks
