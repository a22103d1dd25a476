// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <tuple>
#include <vector>

#include "kelvora/grid_based_cluster_generator.hpp"
#include "reference/grid_based_cluster_generator.hpp"
#include "support/feeding.hpp"
#include "support/workloads.hpp"

// Every benchmark runs with the library and with the model, one after the other, to measure the
// ratio of their times. Before anything is timed, both have to give the same clusters.

namespace kelvora::benchmarks {
namespace {

/// Seconds of processor time of this thread, without the time of other programs on a shared
/// machine.
double processorTime() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Mode {
    EventFilterType filter_type;
    bool count_pixel_once;
    unsigned short activation_threshold;
};

template <class Generator>
Generator build(const Workload& workload, const Mode& mode) {
    const int largest = std::max(workload.sensor_width, workload.sensor_height);
    return Generator(workload.sensor_width, workload.sensor_height, workload.cell_size,
                     workload.cell_size, largest, 0, mode.filter_type, mode.count_pixel_once,
                     mode.activation_threshold);
}

bool areSame(const std::vector<ClusterGeometry>& a, const std::vector<ClusterGeometry>& b) {
    const auto fields = [](const ClusterGeometry& cluster) {
        return std::tie(cluster.x, cluster.y, cluster.width, cluster.height, cluster.timestamp);
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](const auto& x, const auto& y) { return fields(x) == fields(y); });
}

/// Whether library and model find the same clusters, and any at all.
bool modelAgrees(const Workload& workload, const Mode& mode, Feed<GridBasedClusterGenerator> feed) {
    auto library = build<GridBasedClusterGenerator>(workload, mode);
    auto model = build<reference::GridBasedClusterGenerator>(workload, mode);
    std::vector<ClusterGeometry> from_library;
    std::vector<ClusterGeometry> from_model;
    std::size_t clusters = 0;
    for (std::size_t i = 0; i < workload.batches.size(); ++i) {
        feed(library, workload.batches[i]);
        feedOneByOne(model, workload.batches[i]);
        library.generateClusters(i, from_library);
        model.generateClusters(i, from_model);
        if (!areSame(from_library, from_model)) {
            return false;
        }
        clusters += from_library.size();
    }
    return clusters > 0;
}

struct Seconds {
    double intake = 0;
    double extraction = 0;
};

/// Runs all batches once, and times intake and extraction apart. A batch is long enough for the
/// clock not to matter.
template <class Generator>
Seconds run(Generator& generator, const Workload& workload, Feed<Generator> feed,
            std::vector<ClusterGeometry>& clusters) {
    Seconds seconds;
    for (const auto& batch : workload.batches) {
        const double start = processorTime();
        feed(generator, batch);
        const double fed = processorTime();
        generator.generateClusters(0, clusters);
        benchmark::DoNotOptimize(clusters.data());
        seconds.intake += fed - start;
        seconds.extraction += processorTime() - fed;
    }
    return seconds;
}

/// Time to feed the events, without the extraction between batches.
template <class Generator, Feed<Generator> feed>
void intake(benchmark::State& state, const Workload& (*scene)(), const Mode& mode) {
    const Workload& workload = scene();
    if (!modelAgrees(workload, mode, feedOneByOne) || !modelAgrees(workload, mode, feedBatch)) {
        state.SkipWithError("library and model give different clusters");
        return;
    }
    auto generator = build<Generator>(workload, mode);
    std::vector<ClusterGeometry> clusters;
    std::size_t events = 0;
    for (const auto& batch : workload.batches) {
        events += batch.size();
    }
    for ([[maybe_unused]] auto iteration : state) {
        state.SetIterationTime(run(generator, workload, feed, clusters).intake);
    }
    reportPerEvent(state, events);
}

/// Time of `generateClusters` if a fifth of the cells is marked, without the time to mark them.
template <class Generator>
void extraction(benchmark::State& state, CellPattern pattern) {
    constexpr int kRows = 120;
    constexpr int kCols = 160;
    constexpr int kCellSize = 1;
    constexpr Mode kMode = {POLARITY_FREE, false, 1};
    const Workload workload = {kCols * kCellSize,
                               kRows * kCellSize,
                               kCellSize,
                               {activatedCells(pattern, kRows, kCols, kCellSize)}};
    if (!modelAgrees(workload, kMode, feedOneByOne)) {
        state.SkipWithError("library and model give different clusters");
        return;
    }
    auto generator = build<Generator>(workload, kMode);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        state.SetIterationTime(
            run(generator, workload, feedOneByOne<Generator>, clusters).extraction);
    }
    state.counters["clusters"] = static_cast<double>(clusters.size());
}

/// Time of a whole window, with the intake of its events and the extraction of its clusters.
template <class Generator, Feed<Generator> feed>
void windows(benchmark::State& state, const Mode& mode) {
    constexpr std::size_t kWindows = 20;
    const Workload workload =
        movingObjects(1280, 720, 8, static_cast<std::size_t>(state.range(0)), kWindows);
    if (!modelAgrees(workload, mode, feedOneByOne) || !modelAgrees(workload, mode, feedBatch)) {
        state.SkipWithError("library and model give different clusters");
        return;
    }
    auto generator = build<Generator>(workload, mode);
    std::vector<ClusterGeometry> clusters;
    for ([[maybe_unused]] auto iteration : state) {
        for (const auto& batch : workload.batches) {
            feed(generator, batch);
            generator.generateClusters(0, clusters);
            benchmark::DoNotOptimize(clusters.data());
        }
    }
    state.counters["per_window"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * kWindows,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void eventsPerWindow(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("events")->Arg(1)->Arg(100)->Arg(1000)->Arg(4000)->Arg(5000);
}

const Workload& smallSensor() {
    static const Workload workload = movingObjects(346, 260, 4, 10'000, 20);
    return workload;
}

const Workload& largeSensor() {
    static const Workload workload = movingObjects(1280, 720, 8, 50'000, 8);
    return workload;
}

constexpr Mode kCommon = {POLARITY_FREE, false, 6};
constexpr Mode kCommonOnce = {POLARITY_FREE, true, 6};
constexpr Mode kSeparate = {POLARITY_SEPARATE, false, 3};
constexpr Mode kSeparateOnce = {POLARITY_SEPARATE, true, 3};
constexpr Mode kFirstEvent = {POLARITY_FREE, false, 1};

constexpr auto library_intake = intake<GridBasedClusterGenerator, feedOneByOne>;
constexpr auto library_batch_intake = intake<GridBasedClusterGenerator, feedBatch>;
constexpr auto literal_intake = intake<reference::GridBasedClusterGenerator, feedOneByOne>;
constexpr auto library_windows = windows<GridBasedClusterGenerator, feedOneByOne>;
constexpr auto library_batch_windows = windows<GridBasedClusterGenerator, feedBatch>;
constexpr auto literal_windows = windows<reference::GridBasedClusterGenerator, feedOneByOne>;
constexpr auto library_extraction = extraction<GridBasedClusterGenerator>;
constexpr auto literal_extraction = extraction<reference::GridBasedClusterGenerator>;

BENCHMARK_CAPTURE(literal_intake, 346x260, smallSensor, kCommon)->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 346x260, smallSensor, kCommon)->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 346x260, smallSensor, kCommon)->UseManualTime();
BENCHMARK_CAPTURE(literal_intake, 346x260_pixels_once, smallSensor, kCommonOnce)->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 346x260_pixels_once, smallSensor, kCommonOnce)->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 346x260_pixels_once, smallSensor, kCommonOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(literal_intake, 346x260_separate, smallSensor, kSeparate)->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 346x260_separate, smallSensor, kSeparate)->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 346x260_separate, smallSensor, kSeparate)->UseManualTime();
BENCHMARK_CAPTURE(literal_intake, 346x260_separate_pixels_once, smallSensor, kSeparateOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 346x260_separate_pixels_once, smallSensor, kSeparateOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 346x260_separate_pixels_once, smallSensor, kSeparateOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(literal_intake, 1280x720, largeSensor, kCommon)->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 1280x720, largeSensor, kCommon)->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 1280x720, largeSensor, kCommon)->UseManualTime();
BENCHMARK_CAPTURE(literal_intake, 1280x720_pixels_once, largeSensor, kCommonOnce)->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 1280x720_pixels_once, largeSensor, kCommonOnce)->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 1280x720_pixels_once, largeSensor, kCommonOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(literal_intake, 1280x720_separate, largeSensor, kSeparate)->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 1280x720_separate, largeSensor, kSeparate)->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 1280x720_separate, largeSensor, kSeparate)->UseManualTime();
BENCHMARK_CAPTURE(literal_intake, 1280x720_separate_pixels_once, largeSensor, kSeparateOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(library_intake, 1280x720_separate_pixels_once, largeSensor, kSeparateOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(library_batch_intake, 1280x720_separate_pixels_once, largeSensor, kSeparateOnce)
    ->UseManualTime();
BENCHMARK_CAPTURE(library_windows, 1280x720, kFirstEvent)->Apply(eventsPerWindow);
BENCHMARK_CAPTURE(library_batch_windows, 1280x720, kFirstEvent)->Apply(eventsPerWindow);
BENCHMARK_CAPTURE(literal_windows, 1280x720, kFirstEvent)->Apply(eventsPerWindow);
BENCHMARK_CAPTURE(library_extraction, random, CellPattern::kRandom)->UseManualTime();
BENCHMARK_CAPTURE(literal_extraction, random, CellPattern::kRandom)->UseManualTime();
BENCHMARK_CAPTURE(library_extraction, blobs, CellPattern::kBlobs)->UseManualTime();
BENCHMARK_CAPTURE(literal_extraction, blobs, CellPattern::kBlobs)->UseManualTime();

}  // namespace
}  // namespace kelvora::benchmarks
