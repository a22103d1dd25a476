// SPDX-License-Identifier: MIT
#include "command_line/clustering_options.hpp"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace kelvora::tool {

namespace {

const std::map<std::string, Method> kMethods = {
    {"grid", Method::Grid}, {"density", Method::Density}, {"centroid", Method::Centroid}};

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
    declareWindows(command, options.windows);
    declarePolarity(command, options.windows);
    command.add_option("--method", options.method, "Clustering method")
        ->transform(CLI::CheckedTransformer(kMethods).description(""))
        ->option_text("grid|density|centroid [grid]");
    declareOptions(command, options.grid);
    declareOptions(command, options.point);
    declareOptions(command, options.density);
    declareOptions(command, options.centroid);
    declareOptions(command, options.track);
}

void checkOptions(const ClusteringOptions& options) {
    checkOptions(options.windows);
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
