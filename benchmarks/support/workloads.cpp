// SPDX-License-Identifier: MIT
#include "support/workloads.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <set>
#include <utility>

#include "simulation/event_simulator.hpp"

namespace kelvora::benchmarks {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kMarkedShare = 0.2;
constexpr std::uint64_t kSeed = 20'240'611;

using Random = std::mt19937_64;

double uniform(Random& random, double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
}

/// A disc or, with `half_length`, a bar across its direction of motion.
struct MovingObject {
    double x;
    double y;
    double direction;
    double speed;  ///< Pixels per batch.
    double radius;
    double half_length;
};

MovingObject randomObject(Random& random, int sensor_width, int sensor_height) {
    const double unit = sensor_height / 24.0;
    const bool is_bar = random() % 2 == 0;
    return {uniform(random, 0, sensor_width), uniform(random, 0, sensor_height),
            uniform(random, 0, 2 * kPi),      unit / 2,
            uniform(random, 0.3, 1) * unit,   is_bar ? uniform(random, 1, 3) * unit : 0};
}

Event2D eventAt(double x, double y, bool positive, std::uint64_t timestamp, const Workload& scene) {
    // Objects leave on one side and come back on the other.
    const auto wrapped = [](double position, int size) {
        const double rest = std::fmod(position, size);
        return static_cast<unsigned short>(rest < 0 ? rest + size - 0.001 : rest);
    };
    return {wrapped(x, scene.sensor_width), wrapped(y, scene.sensor_height),
            static_cast<unsigned char>(positive), timestamp};
}

Event2D noiseEvent(Random& random, std::uint64_t timestamp, const Workload& scene) {
    return eventAt(uniform(random, 0, scene.sensor_width), uniform(random, 0, scene.sensor_height),
                   random() % 2 == 0, timestamp, scene);
}

/// An event at the front or the rear edge of an object, `progress` batches after the start.
Event2D edgeEvent(Random& random, const MovingObject& object, double progress,
                  std::uint64_t timestamp, const Workload& scene) {
    const bool front = random() % 2 == 0;
    const double angle = uniform(random, -kPi / 2, kPi / 2);
    const double sign = front ? 1 : -1;
    double forward = sign * object.radius * std::cos(angle);
    double sideways = object.radius * std::sin(angle);
    if (object.half_length > 0) {
        forward = sign * object.radius;
        sideways = uniform(random, -object.half_length, object.half_length);
    }
    forward += progress * object.speed + uniform(random, -1, 1);
    const double c = std::cos(object.direction);
    const double s = std::sin(object.direction);
    return eventAt(object.x + forward * c - sideways * s, object.y + forward * s + sideways * c,
                   front, timestamp, scene);
}

using Cell = std::pair<int, int>;

void markBlock(std::set<Cell>& marked, const Cell& cell, int rows, int cols) {
    for (int row = cell.first; row < std::min(cell.first + 2, rows); ++row) {
        for (int col = cell.second; col < std::min(cell.second + 2, cols); ++col) {
            marked.insert({row, col});
        }
    }
}

std::vector<Cell> randomDisc(Random& random, int rows, int cols) {
    const auto center_row = static_cast<int>(uniform(random, 0, rows));
    const auto center_col = static_cast<int>(uniform(random, 0, cols));
    const auto radius = static_cast<int>(uniform(random, 1, 7));
    std::vector<Cell> cells;
    for (int row = center_row - radius; row <= center_row + radius; ++row) {
        for (int col = center_col - radius; col <= center_col + radius; ++col) {
            const bool inside =
                (row - center_row) * (row - center_row) + (col - center_col) * (col - center_col) <=
                radius * radius;
            if (inside && row >= 0 && row < rows && col >= 0 && col < cols) {
                cells.emplace_back(row, col);
            }
        }
    }
    return cells;
}

}  // namespace

Workload movingObjects(int sensor_width, int sensor_height, int cell_size,
                       std::size_t events_per_batch, std::size_t batches) {
    constexpr std::size_t kObjects = 12;
    Random random(kSeed);
    Workload scene = {sensor_width, sensor_height, cell_size, {}};
    std::vector<MovingObject> objects;
    for (std::size_t i = 0; i < kObjects; ++i) {
        objects.push_back(randomObject(random, sensor_width, sensor_height));
    }
    std::uint64_t timestamp = 0;
    for (std::size_t i = 0; i < batches; ++i) {
        std::vector<Event2D>& batch = scene.batches.emplace_back();
        batch.reserve(events_per_batch);
        while (batch.size() < events_per_batch) {
            const double progress =
                static_cast<double>(i) +
                static_cast<double>(batch.size()) / static_cast<double>(events_per_batch);
            ++timestamp;
            batch.push_back(random() % 10 == 0 ? noiseEvent(random, timestamp, scene)
                                               : edgeEvent(random, objects[random() % kObjects],
                                                           progress, timestamp, scene));
        }
    }
    return scene;
}

std::vector<Event2D> activatedCells(CellPattern pattern, int rows, int cols, int cell_size) {
    Random random(kSeed);
    std::set<Cell> marked;
    std::vector<Event2D> events;
    while (static_cast<double>(marked.size()) < kMarkedShare * rows * cols) {
        std::vector<Cell> cells = {{static_cast<int>(uniform(random, 0, rows)),
                                    static_cast<int>(uniform(random, 0, cols))}};
        if (pattern == CellPattern::kBlobs) {
            cells = randomDisc(random, rows, cols);
        }
        for (const Cell& cell : cells) {
            markBlock(marked, cell, rows, cols);
            events.emplace_back(static_cast<unsigned short>(cell.second * cell_size),
                                static_cast<unsigned short>(cell.first * cell_size),
                                static_cast<unsigned char>(1), 0);
        }
    }
    return events;
}

std::vector<Event2D> simulatedEvents(const SensorSize& sensor, std::size_t count) {
    simulation::SceneOptions options;
    options.width = sensor.width;
    options.height = sensor.height;
    options.duration_us = 60'000'000;  // more than any benchmark uses
    simulation::EventSimulator simulator(options);
    std::vector<Event2D> events;
    std::vector<simulation::GroundTruth> truth;
    while (events.size() < count && simulator.step(events, truth)) {
    }
    events.erase(events.begin() + static_cast<std::ptrdiff_t>(std::min(count, events.size())),
                 events.end());
    return events;
}

std::vector<Event2D> flickeringBlock(int side, std::size_t count) {
    constexpr double kCorner = 100;
    Random random(kSeed);
    std::vector<Event2D> events;
    for (std::size_t i = 0; i < count; ++i) {
        const double x = uniform(random, kCorner, kCorner + side);
        const double y = uniform(random, kCorner, kCorner + side);
        events.emplace_back(static_cast<unsigned short>(x), static_cast<unsigned short>(y),
                            static_cast<unsigned char>(1), 10 * i);
    }
    return events;
}

template <int DIM, typename T>
std::vector<KDPoint<DIM, T>> pointsOf(const std::vector<Event2D>& events) {
    std::vector<KDPoint<DIM, T>> points;
    points.reserve(events.size());
    for (const Event2D& event : events) {
        KDPoint<DIM, T>& point = points.emplace_back();
        point.coordinates[0] = event.x;
        point.coordinates[1] = event.y;
        if constexpr (DIM == 3) {
            point.coordinates[2] = static_cast<T>(event.timestamp) * static_cast<T>(0.001F);
        }
    }
    return points;
}

template std::vector<KDPoint<2, float>> pointsOf<2>(const std::vector<Event2D>& events);
template std::vector<KDPoint<2, double>> pointsOf<2>(const std::vector<Event2D>& events);
template std::vector<KDPoint<3, float>> pointsOf<3>(const std::vector<Event2D>& events);

}  // namespace kelvora::benchmarks
