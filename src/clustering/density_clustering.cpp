// SPDX-License-Identifier: MIT
#include "kelvora/density_clustering.hpp"

#include <limits>
#include <stdexcept>
#include <thread>

#include "clustering/cell_list.hpp"
#include "clustering/crowded_expansion.hpp"
#include "clustering/crowding.hpp"
#include "clustering/first_failure.hpp"
#include "clustering/grid_search.hpp"
#include "clustering/ordered_expansion.hpp"
#include "clustering/set_report.hpp"
#include "clustering/task_gate.hpp"
#include "clustering/tree_search.hpp"
#include "clustering/wide_grid_search.hpp"
#include "exclusive_use.hpp"

namespace kelvora {

namespace {

/// Larger than any number of blocks, but small enough to be incremented safely.
constexpr std::size_t kNothingLeft = std::numeric_limits<std::size_t>::max() / 2;

/// With fewer blocks, a single worker joins them before the others would wake up.
constexpr std::size_t kBlocksToShare = 32;

/// One in so many points is sampled to estimate the density.
constexpr std::size_t kSampleStep = 8;

}  // namespace

/// The searches for neighbours. Kept between calls to reuse their memory.
template <int DIM, typename T>
struct DensityClustering<DIM, T>::Engines {
    const std::vector<Point>* points = nullptr;  ///< Points of the current call.

    // One job.
    OrderedExpansion<DIM, T> expansion;
    CrowdedExpansion<DIM, T> crowded_expansion{expansion.tree};

    // Several jobs.
    bool findsSparseCells(const std::vector<Point>& some, std::size_t step, T radius);
    void chooseSearch(T radius, std::size_t required_points);
    std::vector<Point> sample;
    CellList<DIM, T> cells;
    GridSearch<DIM, T> grid{cells};
    WideGridSearch<DIM, T> wide_grid{cells};
    TreeSearch<DIM, T> tree;
    ParallelSearch* search = nullptr;  ///< One of the three searches.
    TaskGate core_points_found;
    std::vector<std::uint32_t> set_of;

    ExclusiveUse exclusive_use;
};

template <int DIM, typename T>
DensityClustering<DIM, T>::DensityClustering(double eps_, int min_pts_)
    : eps(eps_), min_pts(min_pts_), next_point(0), engines(std::make_unique<Engines>()) {}

template <int DIM, typename T>
DensityClustering<DIM, T>::~DensityClustering() = default;

template <int DIM, typename T>
void DensityClustering<DIM, T>::generateClustersMultiThread(
    const std::vector<Point>& points, std::vector<std::vector<std::size_t>>& clusters,
    std::vector<std::vector<T>>& boxes, unsigned char n_jobs) {
    const ExclusiveUse::Scope scope(engines->exclusive_use);
    if (n_jobs == 0) {
        throw std::runtime_error("n_jobs must be greater than 0");
    }
    if (points.size() > SeedStack::kMostHeld) {
        throw std::length_error("too many points for density clustering: at most 2^30");
    }
    engines->points = &points;
    generateClustersMultiThreadPrivate(clusters, boxes, n_jobs);
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::generateClustersPrivate(
    std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& boxes) {
    clusters.clear();
    boxes.clear();
    const std::vector<Point>& points = *engines->points;
    if (requiredPoints() > points.size()) {
        return;
    }
    clusters.reserve(points.size() / requiredPoints());
    boxes.reserve(points.size() / requiredPoints());
    const T radius = static_cast<T>(eps);
    engines->expansion.tree.build(points);
    if (points.size() <= engines->crowded_expansion.kMostPoints &&
        isCrowded(engines->expansion.tree, radius)) {
        engines->crowded_expansion.run(points, radius, requiredPoints(), clusters, boxes);
    } else {
        engines->expansion.run(points, radius, requiredPoints(), clusters, boxes);
    }
}

/// Returns how many points make a neighbourhood dense. Without a positive `min_pts`, none is dense.
template <int DIM, typename T>
std::size_t DensityClustering<DIM, T>::requiredPoints() const {
    return min_pts > 0 ? static_cast<std::size_t>(min_pts)
                       : std::numeric_limits<std::size_t>::max();
}

template <int DIM, typename T>
void DensityClustering<DIM, T>::generateClustersMultiThreadPrivate(
    std::vector<std::vector<std::size_t>>& clusters, std::vector<std::vector<T>>& boxes,
    unsigned char n_jobs) {
    if (n_jobs == 1) {
        generateClustersPrivate(clusters, boxes);
        return;
    }
    clusters.clear();
    boxes.clear();
    const std::vector<Point>& points = *engines->points;
    engines->chooseSearch(static_cast<T>(eps), requiredPoints());
    runWorkers(n_jobs);
    engines->set_of.resize(points.size());
    engines->search->writeSets(engines->set_of);
    reportSets(points, engines->set_of, clusters, boxes);
}

/// Finds wide cells, and returns whether they hold so few points that small cells would not be
/// faster.
///
/// \param step  `some` holds one in so many points.
template <int DIM, typename T>
bool DensityClustering<DIM, T>::Engines::findsSparseCells(const std::vector<Point>& some,
                                                          std::size_t step, T radius) {
    return cells.findCells(some, radius, wide_grid.kCellsPerRadius, wide_grid.kReach) &&
           cells.crowding() * static_cast<double>(step) < wide_grid.kMostCrowding;
}

/// Looks at a sample first. Dense points are clustered fastest, so that finding their cells twice
/// would take a large share of the time.
template <int DIM, typename T>
void DensityClustering<DIM, T>::Engines::chooseSearch(T radius, std::size_t required_points) {
    sample.clear();
    for (std::size_t i = 0; i < points->size(); i += kSampleStep) {
        sample.push_back((*points)[i]);
    }
    if (findsSparseCells(sample, kSampleStep, radius) && findsSparseCells(*points, 1, radius)) {
        cells.collectPoints(*points);
        wide_grid.reset(radius, required_points);
        search = &wide_grid;
    } else if (cells.findCells(*points, radius, grid.kCellsPerRadius, grid.kReach)) {
        cells.collectPoints(*points);
        grid.reset(radius, required_points);
        search = &grid;
    } else {
        tree.tree.build(*points);
        tree.reset(radius, required_points);
        search = &tree;
    }
}

/// Runs `thouroughSearch` on `n_jobs` threads. If a thread fails, or cannot be started, throws the
/// first exception after all threads have ended.
template <int DIM, typename T>
void DensityClustering<DIM, T>::runWorkers(unsigned char n_jobs) {
    FirstFailure failure;
    const auto fail = [&] {
        failure.keepCurrent();
        next_point = kNothingLeft;
        engines->core_points_found.giveUp();
    };
    const auto work = [&] {
        try {
            thouroughSearch();
        } catch (...) {
            fail();
        }
    };
    next_point = 0;
    engines->core_points_found.close(engines->search->blocks());
    std::vector<std::thread> workers;
    workers.reserve(n_jobs);
    try {
        for (int job = 0; job < n_jobs; ++job) {
            workers.emplace_back(work);
        }
    } catch (...) {
        fail();
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    failure.rethrow();
}

/// The work of one thread. All threads together find the core points of all blocks, then join the
/// neighbours of all blocks.
template <int DIM, typename T>
void DensityClustering<DIM, T>::thouroughSearch() {
    ParallelSearch& search = *engines->search;
    const std::size_t blocks = search.blocks();
    std::size_t searched = 0;
    std::size_t i = next_point.fetch_add(1);
    for (; i < blocks; i = next_point.fetch_add(1)) {
        search.findCorePoints(i);
        ++searched;
    }
    const bool is_last = engines->core_points_found.done(searched);
    if (blocks < kBlocksToShare) {
        for (i = is_last ? 0 : blocks; i < blocks; ++i) {
            search.joinNeighbours(i);
        }
        return;
    }
    if (!engines->core_points_found.wait()) {
        return;
    }
    for (; i < 2 * blocks; i = next_point.fetch_add(1)) {
        search.joinNeighbours(i - blocks);
    }
}

template class DensityClustering<2, float>;
template class DensityClustering<2, double>;
template class DensityClustering<3, float>;
template class DensityClustering<3, double>;

}  // namespace kelvora
