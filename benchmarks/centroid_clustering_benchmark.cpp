// SPDX-License-Identifier: MIT
// Clustering around centroids, of the first events of a scene, by the library and by a literal
// model. Two runs are timed in turn, of one iteration and of eleven. That gives the figures
// "first_ms", choosing the first centroids and one iteration, and "further_ms", each iteration after
// that, in milliseconds of processor time. Choosing the first centroids is also timed alone.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <vector>

#include "clustering/furthest_point.hpp"
#include "kelvora/centroid_clustering.hpp"
#include "reference/centroid_clustering.hpp"
#include "support/clock.hpp"
#include "support/workloads.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr std::size_t kFurtherIterations = 10;
/// Makes each run do all its iterations.
constexpr double kNeverStop = std::numeric_limits<double>::quiet_NaN();

template <int DIM, typename T>
bool sameCoordinates(const std::vector<KDPoint<DIM, T>>& a, const std::vector<KDPoint<DIM, T>>& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const auto& p, const auto& q) { return p.coordinates == q.coordinates; });
}

/// Whether the library and the model, started from one of the points, find the same clusters.
template <int DIM, typename T>
bool isAsModelled(const std::vector<KDPoint<DIM, T>>& points, std::size_t k) {
    constexpr std::size_t kIterations = 5;
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<std::size_t>> modelled;
    std::vector<std::vector<T>> boxes;
    std::vector<std::vector<T>> modelled_boxes;
    std::vector<KDPoint<DIM, T>> centroids;
    CentroidClustering<DIM, T> library(k, kIterations, kNeverStop);
    library.generateClusters(points, clusters, boxes);
    library.getCentroids(centroids);
    reference::CentroidClustering<DIM, T> model(k, kIterations, kNeverStop);
    for (std::size_t first = 0; first < points.size(); ++first) {
        model.generateClustersFrom(first, points, modelled, modelled_boxes);
        if (clusters == modelled && boxes == modelled_boxes &&
            sameCoordinates(centroids, model.getCentroids())) {
            return true;
        }
    }
    return false;
}

/// Milliseconds of one run.
template <class Clustering, typename Point, typename T>
double timeRun(Clustering& clustering, const std::vector<Point>& points,
               std::vector<std::vector<std::size_t>>& clusters,
               std::vector<std::vector<T>>& boxes) {
    const double start = processorMilliseconds();
    clustering.generateClusters(points, clusters, boxes);
    return processorMilliseconds() - start;
}

template <template <int, typename> class Clustering, int DIM, typename T>
void run(benchmark::State& state) {
    const auto k = static_cast<std::size_t>(state.range(0));
    const auto events = static_cast<std::size_t>(state.range(1));
    const auto points = pointsOf<DIM, T>(simulatedEvents(kSmallSensor, events));
    Clustering<DIM, T> shorter(k, 1, kNeverStop);
    Clustering<DIM, T> longer(k, 1 + kFurtherIterations, kNeverStop);
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
    double shorter_total = 0;
    double longer_total = 0;
    for ([[maybe_unused]] auto iteration : state) {
        shorter_total += timeRun(shorter, points, clusters, boxes);
        longer_total += timeRun(longer, points, clusters, boxes);
    }
    const auto few = points.begin() + std::min<std::ptrdiff_t>(state.range(1), 500);
    if (points.size() != events || clusters.size() != k ||
        !isAsModelled<DIM, T>({points.begin(), few}, k)) {
        state.SkipWithError("too few events, or clusters that the model does not find");
    }
    const auto runs = static_cast<double>(state.iterations());
    state.counters["first_ms"] = shorter_total / runs;
    state.counters["further_ms"] = (longer_total - shorter_total) / runs / kFurtherIterations;
}

/// Each way to choose the first centroids takes the middle point as the first of them.
template <int DIM, typename T>
struct LibrarySeeding {
    explicit LibrarySeeding(std::size_t k_) : k(k_) {}

    void choose(const std::vector<KDPoint<DIM, T>>& points) {
        centroids = {points[points.size() / 2]};
        FurthestPoint<DIM, T> furthest(points, centroids.front());
        while (centroids.size() < k) {
            centroids.push_back(points[furthest.index()]);
            furthest.addCentroid(centroids.back());
        }
    }

    std::size_t k;
    std::vector<KDPoint<DIM, T>> centroids;
};

template <int DIM, typename T>
struct LiteralSeeding {
    explicit LiteralSeeding(std::size_t k) : model(k, 1, kNeverStop) {}

    void choose(const std::vector<KDPoint<DIM, T>>& points) {
        model.furthestPointSample(points.size() / 2, points);
        centroids = model.getCentroids();
    }

    reference::CentroidClustering<DIM, T> model;
    std::vector<KDPoint<DIM, T>> centroids;
};

template <template <int, typename> class Seeding, int DIM, typename T>
void seed(benchmark::State& state) {
    const auto k = static_cast<std::size_t>(state.range(0));
    const auto events = static_cast<std::size_t>(state.range(1));
    const auto points = pointsOf<DIM, T>(simulatedEvents(kSmallSensor, events));
    Seeding<DIM, T> seeding(k);
    for ([[maybe_unused]] auto iteration : state) {
        seeding.choose(points);
    }
    LiteralSeeding<DIM, T> model(k);
    model.choose(points);
    if (!sameCoordinates(seeding.centroids, model.centroids)) {
        state.SkipWithError("centroids that the model does not choose");
    }
}

void clusterNumbers(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"k", "events"})->Unit(benchmark::kMillisecond);
    benchmark->ArgsProduct({{8, 32, 128}, {50'000}});
}

void fewEvents(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"k", "events"})->Unit(benchmark::kMillisecond);
    benchmark->ArgsProduct({{8, 32}, {100, 500, 2'000}});
}

void oneClusterNumber(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"k", "events"})->Unit(benchmark::kMillisecond);
    benchmark->Args({32, 50'000});
}

BENCHMARK_TEMPLATE(seed, LibrarySeeding, 2, float)->Apply(clusterNumbers);
BENCHMARK_TEMPLATE(seed, LiteralSeeding, 2, float)->Apply(clusterNumbers);
BENCHMARK_TEMPLATE(seed, LibrarySeeding, 3, float)->Apply(clusterNumbers);
BENCHMARK_TEMPLATE(seed, LiteralSeeding, 3, float)->Apply(clusterNumbers);
BENCHMARK_TEMPLATE(run, CentroidClustering, 2, float)->Apply(clusterNumbers)->Apply(fewEvents);
BENCHMARK_TEMPLATE(run, reference::CentroidClustering, 2, float)
    ->Apply(clusterNumbers)
    ->Apply(fewEvents);
BENCHMARK_TEMPLATE(run, CentroidClustering, 2, double)->Apply(oneClusterNumber);
BENCHMARK_TEMPLATE(run, reference::CentroidClustering, 2, double)->Apply(oneClusterNumber);
BENCHMARK_TEMPLATE(run, CentroidClustering, 3, float)->Apply(clusterNumbers)->Apply(fewEvents);
BENCHMARK_TEMPLATE(run, reference::CentroidClustering, 3, float)
    ->Apply(clusterNumbers)
    ->Apply(fewEvents);

}  // namespace
}  // namespace kelvora::benchmarks
