// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora::benchmarks {

/// Events of a scene, cut into the batches between which clusters are generated.
struct Workload {
    int sensor_width;
    int sensor_height;
    int cell_size;
    std::vector<std::vector<Event2D>> batches;
};

/// Bright bars and discs that move over a dark background, with one tenth of noise: positive events
/// at the edges in front, negative ones at those behind. The same in every run.
Workload movingObjects(int sensor_width, int sensor_height, int cell_size,
                       std::size_t events_per_batch, std::size_t batches);

/// One event in each of the cells to be activated, so that about a fifth of the cells is marked.
enum class CellPattern { kRandom, kBlobs };
std::vector<Event2D> activatedCells(CellPattern pattern, int rows, int cols, int cell_size);

/// Size of a sensor, in pixels. The scenes of the benchmarks differ in nothing else.
struct SensorSize {
    int width;
    int height;
};

constexpr SensorSize kSmallSensor = {640, 480};
constexpr SensorSize kLargeSensor = {1280, 720};

/// The first `count` events of the simulator's scene on such a sensor, from time 0. The same in
/// every run.
std::vector<Event2D> simulatedEvents(const SensorSize& sensor, std::size_t count);

/// Events at random pixels of a block of `side` x `side` pixels, one every 10 us: a hot pixel, if
/// `side` is 1, or a flickering light. The same in every run.
std::vector<Event2D> flickeringBlock(int side, std::size_t count);

/// Events as points: pixels and, in three dimensions, milliseconds.
template <int DIM, typename T = float>
std::vector<KDPoint<DIM, T>> pointsOf(const std::vector<Event2D>& events);

extern template std::vector<KDPoint<2, float>> pointsOf<2>(const std::vector<Event2D>& events);
extern template std::vector<KDPoint<2, double>> pointsOf<2>(const std::vector<Event2D>& events);
extern template std::vector<KDPoint<3, float>> pointsOf<3>(const std::vector<Event2D>& events);

}  // namespace kelvora::benchmarks
