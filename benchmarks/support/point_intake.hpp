// SPDX-License-Identifier: MIT
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "kelvora/kd_point.hpp"
#include "reference/point_intake.hpp"
#include "support/feeding.hpp"
#include "support/workloads.hpp"

/// \file
/// How long generators that work on points take for an event, beside a literal model.

namespace kelvora::benchmarks {

constexpr std::size_t kCapacity = 100'000;
constexpr std::size_t kWindow = 10'000'000;  // microseconds
constexpr float kScaleTime = 0.001F;         // a millisecond weighs as much as a pixel

/// The places of all points, in ascending order.
template <int DIM>
std::vector<std::array<float, DIM>> placesOf(
    const std::vector<std::vector<KDPoint<DIM, float>>>& clusters) {
    std::vector<std::array<float, DIM>> places;
    for (const auto& cluster : clusters) {
        for (const auto& point : cluster) {
            places.push_back(point.coordinates);
        }
    }
    std::sort(places.begin(), places.end());
    return places;
}

/// Whether library and model make the same points, in any order.
/// \param generator  Puts every event into a cluster.
template <int DIM, class Generator>
bool modelAgrees(Generator generator, Feed<Generator> feed, const std::vector<Event2D>& events) {
    constexpr std::ptrdiff_t kSome = 2'000;
    const std::vector<Event2D> some(events.begin(), events.begin() + kSome);
    reference::PointIntake<DIM> model(kCapacity, kWindow, kScaleTime);
    feed(generator, some);
    feedOneByOne(model, some);
    std::vector<ClusterGeometry> clusters;
    std::vector<std::vector<KDPoint<DIM, float>>> points;
    generator.generateClusters(0, clusters);
    generator.getClusterPoints(points, false);
    return !model.getPoints().empty() &&
           placesOf<DIM>(points) == placesOf<DIM>({model.getPoints()});
}

/// Time to feed the events. The buffers are reserved and never full.
/// \param generator  Has the smallest possible capacity, so that it can be emptied without
///     clustering, and its buffers keep their size.
template <class Generator>
void timeIntake(benchmark::State& state, Generator& generator, Feed<Generator> feed,
                const std::vector<Event2D>& events) {
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
void timeLiteralIntake(benchmark::State& state, const SensorSize& sensor) {
    const auto events = simulatedEvents(sensor, kCapacity);
    reference::PointIntake<DIM> model(kCapacity, kWindow, kScaleTime);
    for ([[maybe_unused]] auto iteration : state) {
        feedOneByOne(model, events);
        state.PauseTiming();
        benchmark::DoNotOptimize(model.getEventCount());
        model.clearPoints();
        state.ResumeTiming();
    }
    reportPerEvent(state, events.size());
}

}  // namespace kelvora::benchmarks
