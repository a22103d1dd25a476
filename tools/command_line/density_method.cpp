// SPDX-License-Identifier: MIT
#include "command_line/density_method.hpp"

#include <CLI/CLI.hpp>
#include <vector>

#include "command_line/event_labels.hpp"
#include "command_line/number_checks.hpp"
#include "command_line/point_method.hpp"
#include "kelvora/density_based_cluster_generator.hpp"

namespace kelvora::tool {

namespace {

constexpr int kMostJobs = 255;

template <int DIM, typename T>
class DensityMethod : public ClusteringMethod {
public:
    DensityMethod(const PointOptions& options, recording::SensorSize sensor,
                  const DensityOptions& density, bool with_labels_)
        : scales(options.scales()),
          with_labels(with_labels_),
          generator(sensor.width, sensor.height, scales.x, scales.y, scales.time, POLARITY_FREE,
                    options.capacity, options.timeLength(), density.eps, density.min_pts,
                    density.jobs) {}

    void cluster(const recording::Window& window, WindowClusters& found) override {
        feed(generator, window);
        generator.generateClusters(window.end_time, found.clusters);
        found.time_origin = window.start_time;
        found.labels.clear();
        found.centroids.clear();
        if (with_labels) {
            points.clear();
            generator.getClusterPoints(points, false);
            found.labels = labelEvents(window, points, scales);
            sortByFirstEvent(found);
        }
    }

private:
    EventScales scales;
    bool with_labels;
    DensityBasedClusterGenerator<DIM, T> generator;
    std::vector<std::vector<KDPoint<DIM, T>>> points;
};

}  // namespace

void declareOptions(CLI::App& command, DensityOptions& options) {
    const auto add = [&command](const char* name, auto& value, const char* text,
                                const char* description) {
        return command.add_option(name, value, description)
            ->option_text(text)
            ->group("Density method");
    };
    add("--eps", options.eps, "UNITS [10]",
        "Radius of a neighbourhood, scaled units; points at exactly this distance lie outside")
        ->check(isPositive());
    add("--min-pts", options.min_pts, "EVENTS [10]",
        "Number of events that make a neighbourhood dense")
        ->check(isPositive());
    add("--jobs", options.jobs, "THREADS [1]",
        "Number of threads; 0: chosen by the number of events, -1: all. Two or more count a core "
        "point differently (one neighbour more) and let border points join groups, so results "
        "differ from one thread")
        ->check(CLI::Range(-1, kMostJobs));
}

std::unique_ptr<ClusteringMethod> makeDensityMethod(recording::SensorSize sensor,
                                                    const PointOptions& points,
                                                    const DensityOptions& options,
                                                    bool with_labels) {
    // With several jobs, the library does not specify the order of clusters. Order them by label.
    const bool needs_labels = with_labels || options.jobs != 1;
    return makePointMethod<DensityMethod>(points, sensor, options, needs_labels);
}

}  // namespace kelvora::tool
