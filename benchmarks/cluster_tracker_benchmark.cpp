// SPDX-License-Identifier: MIT
// One update of the tracker.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "kelvora/cluster_tracker.hpp"

namespace kelvora::benchmarks {
namespace {

constexpr std::uint64_t kInterval = 10'000;  // microseconds
constexpr float kSpacing = 40;               // pixels, between objects
constexpr float kRadius = 15;                // pixels, of their ways
constexpr std::size_t kRound = 120;          // updates

using Clusters = std::vector<ClusterGeometry>;

float uniform(std::mt19937& random, float low, float high) {
    return low + (high - low) * static_cast<float>(random() % 65536) / 65536;
}

/// Objects that circle side by side, each with a different phase; boxes jitter by a pixel. One in
/// `lost_one_in` clusters is missing; 0 for none.
std::vector<Clusters> circlingObjects(std::size_t count, std::size_t lost_one_in) {
    std::mt19937 random(7);
    const auto columns = static_cast<std::size_t>(std::ceil(std::sqrt(count)));
    std::vector<Clusters> updates(kRound);
    for (std::size_t i = 0; i < count; ++i) {
        const float phase = uniform(random, 0, 6.2832F);
        const std::size_t column = i % columns;
        const std::size_t row = i / columns;
        for (std::size_t k = 0; k < kRound; ++k) {
            if (lost_one_in > 0 && random() % lost_one_in == 0) {
                continue;
            }
            const float angle = phase + 6.2832F * static_cast<float>(k) / kRound;
            const float x = kSpacing * static_cast<float>(column) + kRadius * std::cos(angle);
            const float y = kSpacing * static_cast<float>(row) + kRadius * std::sin(angle);
            updates[k].emplace_back(x, y, 10 + uniform(random, 0, 1), 10 + uniform(random, 0, 1),
                                    0);
        }
    }
    return updates;
}

void setTime(Clusters& clusters, std::uint64_t time) {
    for (ClusterGeometry& cluster : clusters) {
        cluster.timestamp = time;
    }
}

void run(benchmark::State& state, std::size_t lost_one_in) {
    const auto count = static_cast<std::size_t>(state.range(0));
    std::vector<Clusters> updates = circlingObjects(count, lost_one_in);
    ClusterTracker tracker;
    std::uint64_t number = 0;
    for (; number < kRound; ++number) {
        setTime(updates[number], number * kInterval);
        tracker.update(updates[number]);
    }
    for ([[maybe_unused]] auto iteration : state) {
        Clusters& clusters = updates[number % kRound];
        setTime(clusters, number++ * kInterval);
        benchmark::DoNotOptimize(tracker.update(clusters));
    }
    const std::size_t tracks = tracker.getTracks().size();
    if (tracks < count * 9 / 10 || tracks > count * 11 / 10) {
        state.SkipWithError("the number of tracks differs from the number of objects");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["tracks"] = static_cast<double>(tracks);
}

/// Every object has a cluster.
void allSeen(benchmark::State& state) {
    run(state, 0);
}

/// One in ten clusters is missing.
void someMissed(benchmark::State& state) {
    run(state, 10);
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgName("objects")->Arg(10)->Arg(100)->Arg(1'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(allSeen)->Apply(sizes);
BENCHMARK(someMissed)->Apply(sizes);

}  // namespace
}  // namespace kelvora::benchmarks
