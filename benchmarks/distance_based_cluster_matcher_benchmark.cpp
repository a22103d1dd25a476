// SPDX-License-Identifier: MIT
// One pass of the matcher, beside a model that compares every cluster with every other.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "kelvora/distance_based_cluster_matcher.hpp"
#include "reference/distance_based_cluster_matcher.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr float kDistanceThreshold = 20;
constexpr float kSizeThreshold = 4;

using Clusters = std::vector<ClusterGeometry>;

struct Batches {
    Clusters first;
    Clusters second;
};

float uniform(std::mt19937& random, float low, float high) {
    return low + (high - low) * static_cast<float>(random() % 65536) / 65536;
}

/// Clusters all over 1280x720 pixels, and the same ones a moment later, somewhere else by up to 5
/// pixels on either axis, of a somewhat different size, and in another order.
Batches movingClusters(std::size_t count) {
    std::mt19937 random(7);
    Batches batches;
    for (std::size_t i = 0; i < count; ++i) {
        ClusterGeometry cluster(0, 0, 0, 0, 0);
        cluster.x = uniform(random, 0, 1260);
        cluster.y = uniform(random, 0, 700);
        cluster.width = uniform(random, 4, 20);
        cluster.height = uniform(random, 4, 20);
        batches.first.push_back(cluster);
        cluster.x += uniform(random, -5, 5);
        cluster.y += uniform(random, -5, 5);
        cluster.width += uniform(random, -2, 2);
        cluster.height += uniform(random, -2, 2);
        batches.second.push_back(cluster);
    }
    std::shuffle(batches.second.begin(), batches.second.end(), random);
    return batches;
}

void reportClusters(benchmark::State& state, std::size_t candidates, std::size_t pairs) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["candidates"] = static_cast<double>(candidates);
    state.counters["pairs"] = static_cast<double>(pairs);
}

void library(benchmark::State& state) {
    Batches batches = movingClusters(static_cast<std::size_t>(state.range(0)));
    const reference::DistanceBasedClusterMatcher model(kDistanceThreshold, kSizeThreshold);
    DistanceBasedClusterMatcher matcher(kDistanceThreshold, kSizeThreshold);
    std::size_t pairs = 0;
    for ([[maybe_unused]] auto iteration : state) {
        pairs = matcher.matchClusters(batches.first, batches.second);
        benchmark::DoNotOptimize(pairs);
    }
    if (pairs == 0 ||
        reference::pairsOf(matcher) != model.match(batches.first, batches.second, 0)) {
        state.SkipWithError("library and model give different pairs");
    }
    reportClusters(state, model.candidates(batches.first, batches.second).size(), pairs);
}

void brute_force(benchmark::State& state) {
    const Batches batches = movingClusters(static_cast<std::size_t>(state.range(0)));
    const reference::DistanceBasedClusterMatcher model(kDistanceThreshold, kSizeThreshold);
    std::vector<reference::MatchedPair> pairs;
    for ([[maybe_unused]] auto iteration : state) {
        pairs = model.match(batches.first, batches.second, 0);
        benchmark::DoNotOptimize(pairs.data());
    }
    reportClusters(state, model.candidates(batches.first, batches.second).size(), pairs.size());
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("clusters")
        ->ArgsProduct({{10, 32, 100, 1'000, 10'000}})
        ->Unit(benchmark::kMicrosecond);
}

BENCHMARK(library)->Apply(sizes);
BENCHMARK(brute_force)->Apply(sizes);

}  // namespace
}  // namespace kelvora::benchmarks
