// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/events.hpp"

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

}  // namespace kelvora::benchmarks
