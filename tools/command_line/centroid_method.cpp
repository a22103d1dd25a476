// SPDX-License-Identifier: MIT
#include "command_line/centroid_method.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "command_line/event_labels.hpp"
#include "command_line/number_checks.hpp"
#include "command_line/point_method.hpp"
#include "kelvora/centroid_based_cluster_generator.hpp"

namespace kelvora::tool {

namespace {

// The clustering's constructor allocates a count per cluster.
constexpr unsigned long long kMostClusters = 1'000'000;

template <int DIM, typename T>
class CentroidMethod : public ClusteringMethod {
public:
    CentroidMethod(const PointOptions& options, recording::SensorSize sensor,
                   const CentroidOptions& centroid)
        : k(centroid.clusters),
          scales(options.scales()),
          generator(sensor.width, sensor.height, scales.x, scales.y, scales.time, POLARITY_FREE,
                    options.capacity, options.timeLength(), k, centroid.max_iter, centroid.tol) {}

    void cluster(const recording::Window& window, WindowClusters& found) override {
        feed(generator, window);
        generator.generateClusters(window.end_time, found.clusters);
        if (found.clusters.empty()) {
            ++windows_with_few_events;
        }
        found.time_origin = window.start_time;
        readCentroids(found.centroids);
        points.clear();
        generator.getClusterPoints(points, false);
        found.labels = labelEvents(window, points, scales);
        sortByFirstEvent(found);
    }

    std::string remark() const override {
        return windows_with_few_events == 0
                   ? ""
                   : fmt::format("{} windows had fewer than {} events, and no clusters",
                                 windows_with_few_events, k);
    }

private:
    void readCentroids(std::vector<ClusterCentroid>& found) {
        generator.getClusterCentroids(centroids);
        generator.getClusterSizes(sizes);
        found.clear();
        for (std::size_t i = 0; i < centroids.size(); ++i) {
            const auto& coordinates = centroids[i].coordinates;
            ClusterCentroid centroid{static_cast<double>(coordinates[0]) / scales.x,
                                     static_cast<double>(coordinates[1]) / scales.y,
                                     {},
                                     sizes[i]};
            if constexpr (DIM == 3) {
                centroid.time_us = static_cast<double>(coordinates[2]) / scales.time;
            }
            found.push_back(centroid);
        }
    }

    unsigned long long k;
    EventScales scales;
    CentroidBasedClusterGenerator<DIM, T> generator;
    std::vector<std::vector<KDPoint<DIM, T>>> points;
    std::vector<KDPoint<DIM, T>> centroids;
    std::vector<unsigned long long> sizes;
    std::uint64_t windows_with_few_events = 0;
};

}  // namespace

void declareOptions(CLI::App& command, CentroidOptions& options) {
    const auto add = [&command](const char* name, auto& value, const char* text,
                                const char* description) {
        return command.add_option(name, value, description)
            ->option_text(text)
            ->group("Centroid method");
    };
    add("--clusters", options.clusters, "NUMBER", "Number of clusters in a window; required")
        ->check(CLI::Range(1ULL, kMostClusters));
    add("--max-iter", options.max_iter, "NUMBER [50]", "Maximum number of iterations")
        ->check(isPositive());
    add("--tol", options.tol, "UNITS [1]",
        "Stop when the sum of squared distances changes by less, squared scaled units")
        ->check(isPositive());
}

std::unique_ptr<ClusteringMethod> makeCentroidMethod(recording::SensorSize sensor,
                                                     const PointOptions& points,
                                                     const CentroidOptions& options) {
    return makePointMethod<CentroidMethod>(points, sensor, options);
}

}  // namespace kelvora::tool
