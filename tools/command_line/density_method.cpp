// SPDX-License-Identifier: MIT
#include "command_line/density_method.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "command_line/event_labels.hpp"
#include "kelvora/density_based_cluster_generator.hpp"

namespace kelvora::tool {

namespace {

constexpr int kMostJobs = 255;

template <int DIM, typename T>
class DensityMethod : public ClusteringMethod {
public:
    DensityMethod(recording::SensorSize sensor, const DensityOptions& options, bool with_labels_)
        : scales{options.scale_x, options.scale_y, options.timeScale()},
          with_labels(with_labels_),
          generator(sensor.width, sensor.height, scales.x, scales.y, scales.time, POLARITY_FREE,
                    options.capacity,
                    options.time_length ? options.time_length->microseconds
                                        : std::numeric_limits<unsigned long long>::max(),
                    options.eps, options.min_pts, options.jobs) {}

    void cluster(const recording::Window& window, WindowClusters& found) override {
        for (const Event2D& event : window) {
            // A float holds the microseconds of a window, but not those since 1970.
            const Event2D relative(event.x, event.y, event.polarity,
                                   event.timestamp - window.start_time);
            generator.processEvent(&relative);
        }
        generator.generateClusters(window.end_time, found.clusters);
        found.time_origin = window.start_time;
        found.labels.clear();
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

template <int DIM>
std::unique_ptr<ClusteringMethod> makeOfPrecision(recording::SensorSize sensor,
                                                  const DensityOptions& options, bool with_labels) {
    if (options.precision == Precision::Float) {
        return std::make_unique<DensityMethod<DIM, float>>(sensor, options, with_labels);
    }
    return std::make_unique<DensityMethod<DIM, double>>(sensor, options, with_labels);
}

}  // namespace

float DensityOptions::timeScale() const {
    return scale_time.value_or(static_cast<float>(1.0 / us_per_pixel));
}

void declareOptions(CLI::App& command, DensityOptions& options) {
    const auto add = [&command](const char* name, auto& value, const char* text,
                                const char* description) {
        return command.add_option(name, value, description)
            ->option_text(text)
            ->group("Density method");
    };
    add("--dim", options.dim, "2|3 [2]", "2: cluster in the image plane; 3: in space and time")
        ->check(CLI::IsMember({2, 3}).description(""));
    add("--eps", options.eps, "UNITS [10]",
        "Radius of a neighbourhood, scaled units; points at exactly this distance lie outside")
        ->check(CLI::PositiveNumber);
    add("--min-pts", options.min_pts, "EVENTS [10]", "Events that make a neighbourhood dense")
        ->check(CLI::PositiveNumber);
    add("--scale-x", options.scale_x, "FACTOR [1]", "Scaled units per pixel column")
        ->check(CLI::PositiveNumber);
    add("--scale-y", options.scale_y, "FACTOR [1]", "Scaled units per pixel row")
        ->check(CLI::PositiveNumber);
    auto* const us_per_pixel = add("--us-per-pixel", options.us_per_pixel, "US [1000]",
                                   "Microseconds that weigh as much as a pixel in three dimensions")
                                   ->check(CLI::PositiveNumber);
    add("--scale-time", options.scale_time, "FACTOR", "The same as scaled units per microsecond")
        ->check(CLI::PositiveNumber)
        ->excludes(us_per_pixel);
    add("--jobs", options.jobs, "THREADS [1]",
        "Threads; 0 chooses by the number of events, -1 takes all. Two and more count a core point "
        "differently (one neighbour more) and let border points join groups: results differ from "
        "those of one")
        ->check(CLI::Range(-1, kMostJobs));
    add("--capacity", options.capacity, "EVENTS [all]", "Most events to cluster, the newest")
        ->check(CLI::PositiveNumber);
    add("--time-length", options.time_length, "TIME [all]",
        "Window of the event counter, with unit: forgets events only across gaps longer than a "
        "hundredth of it");
    add("--precision", options.precision, "float|double [float]", "Numbers to compute with")
        ->transform(
            CLI::CheckedTransformer(std::map<std::string, Precision>{{"float", Precision::Float},
                                                                     {"double", Precision::Double}})
                .description(""));
}

std::unique_ptr<ClusteringMethod> makeDensityMethod(recording::SensorSize sensor,
                                                    const DensityOptions& options,
                                                    bool with_labels) {
    // The library leaves the order of clusters open for several jobs: labels settle it.
    const bool needs_labels = with_labels || options.jobs != 1;
    return options.dim == 2 ? makeOfPrecision<2>(sensor, options, needs_labels)
                            : makeOfPrecision<3>(sensor, options, needs_labels);
}

}  // namespace kelvora::tool
