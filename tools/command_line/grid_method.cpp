// SPDX-License-Identifier: MIT
#include "command_line/grid_method.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "command_line/number_checks.hpp"

namespace kelvora::tool {

void declareOptions(CLI::App& command, GridOptions& options) {
    const auto add = [&command](const char* name, auto& value, const char* unit,
                                const char* description) {
        return command.add_option(name, value, description)
            ->option_text(fmt::format("{} [{}]", unit, value))
            ->group("Grid method");
    };
    const CLI::Range pixels(1, recording::kLargestSensorSide);
    add("--cell-width", options.cell_width, "PIXELS", "Width of a cell")->check(pixels);
    add("--cell-height", options.cell_height, "PIXELS", "Height of a cell")->check(pixels);
    add("--max-cluster-size", options.max_cluster_size, "PIXELS",
        "Largest width and height of a cluster, in whole cells")
        ->check(isNotNegative());
    add("--min-cluster-size", options.min_cluster_size, "PIXELS",
        "Smallest width and height of a cluster, in whole cells; a single active cell makes a "
        "cluster of two by two")
        ->check(isNotNegative());
    add("--activation-threshold", options.activation_threshold, "EVENTS",
        "Events in a window that make a cell active; with --polarity separate, of each polarity");
    command
        .add_flag("--count-every-event", options.count_every_event,
                  "Count all events of a pixel, not only the first in a window (hot pixels then "
                  "count fully)")
        ->group("Grid method");
}

GridMethod::GridMethod(recording::SensorSize sensor, Polarity polarity, const GridOptions& options)
    : generator(sensor.width, sensor.height, options.cell_width, options.cell_height,
                options.max_cluster_size, options.min_cluster_size,
                polarity == Polarity::Separate ? POLARITY_SEPARATE : POLARITY_FREE,
                !options.count_every_event, options.activation_threshold) {}

void GridMethod::cluster(const recording::Window& window, WindowClusters& found) {
    generator.processEvents(window.first, window.size());
    generator.generateClusters(window.end_time, found.clusters);
    found.time_origin = 0;
    found.labels.clear();
    found.centroids.clear();
}

}  // namespace kelvora::tool
