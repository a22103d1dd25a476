// SPDX-License-Identifier: MIT
#include "command_line/clustering_options.hpp"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace kelvora::tool {

namespace {

const std::map<std::string, Polarity> kPolarities = {{"all", Polarity::All},
                                                     {"on", Polarity::On},
                                                     {"off", Polarity::Off},
                                                     {"separate", Polarity::Separate}};

const std::map<std::string, Method> kMethods = {
    {"grid", Method::Grid}, {"density", Method::Density}, {"centroid", Method::Centroid}};

void declareOptions(CLI::App& command, WindowOptions& options) {
    command
        .add_option(
            "--window", options.window,
            "Length of a window of event time, with its unit: us, ms or s. Windows begin at "
            "multiples of it")
        ->option_text("TIME [" + toString(options.window) + "]");
    command
        .add_option("--from", options.from,
                    "Leave out events before this time after the first one, with unit")
        ->option_text("TIME [0s]");
    command
        .add_option("--to", options.to,
                    "Leave out events from this time after the first one on, with unit")
        ->option_text("TIME");
    command
        .add_option("--polarity", options.polarity,
                    "Events to cluster; 'separate' takes all, but wants both polarities in a cell")
        ->transform(CLI::CheckedTransformer(kPolarities).description(""))
        ->option_text("all|on|off|separate [all]");
}

void checkWindowOptions(const WindowOptions& options) {
    if (options.window.microseconds == 0) {
        throw CLI::ValidationError("--window", "must be longer than 0");
    }
    if (options.to && options.to->microseconds <= options.from.microseconds) {
        throw CLI::ValidationError("--to", "must be later than --from");
    }
}

void checkPointOptions(const PointOptions& point, const WindowOptions& windows) {
    if (windows.polarity == Polarity::Separate) {
        throw CLI::ValidationError("--polarity", "separate needs --method grid");
    }
    if (point.time_length && point.time_length->microseconds == 0) {
        throw CLI::ValidationError("--time-length", "must be longer than 0");
    }
    if (point.dim == 3 && windows.window.microseconds > kLongestWindowIn3d.microseconds) {
        throw CLI::ValidationError(
            "--window", "must be at most " + toString(kLongestWindowIn3d) + " with --dim 3");
    }
}

}  // namespace

void declareOptions(CLI::App& command, ClusteringOptions& options) {
    declareOptions(command, options.recording);
    declareOptions(command, options.windows);
    command.add_option("--method", options.method, "How to find clusters")
        ->transform(CLI::CheckedTransformer(kMethods).description(""))
        ->option_text("grid|density|centroid [grid]");
    declareOptions(command, options.grid);
    declareOptions(command, options.point);
    declareOptions(command, options.density);
    declareOptions(command, options.centroid);
    declareOptions(command, options.track);
}

void checkOptions(const ClusteringOptions& options) {
    checkWindowOptions(options.windows);
    if (options.method != Method::Grid) {
        checkPointOptions(options.point, options.windows);
    }
    if (options.method == Method::Centroid && options.centroid.clusters == 0) {
        throw CLI::ValidationError("--clusters", "is required with --method centroid");
    }
}

std::unique_ptr<ClusteringMethod> makeMethod(const ClusteringOptions& options,
                                             recording::SensorSize sensor, bool with_labels) {
    if (options.method == Method::Density) {
        return makeDensityMethod(sensor, options.point, options.density, with_labels);
    }
    if (options.method == Method::Centroid) {
        return makeCentroidMethod(sensor, options.point, options.centroid);
    }
    return std::make_unique<GridMethod>(sensor, options.windows.polarity, options.grid);
}

}  // namespace kelvora::tool
