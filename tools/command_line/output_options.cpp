// SPDX-License-Identifier: MIT
#include "command_line/output_options.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "command_line/write_options.hpp"
#include "sessions/methods.hpp"

namespace kelvora::tool {

namespace {

/// The option that chooses one of the methods with a property: "--method density or centroid".
std::string methodsWith(bool Method::*property) {
    std::vector<std::string> names;
    for (const Method& method : methods()) {
        if (method.*property) {
            names.push_back(method.name);
        }
    }
    return fmt::format("--method {}", fmt::join(names, " or "));
}

void checkPicture(const char* option, const std::filesystem::path& path) {
    if (!path.empty() && path.extension() != ".png") {
        throw CLI::ValidationError(option, "must end in .png");
    }
}

}  // namespace

void declareOptions(CLI::App& command, OutputSettings& options) {
    const char* const group = "Output";
    const std::map<std::string, ClusterFormat> formats = {{"csv", ClusterFormat::Csv},
                                                          {"jsonl", ClusterFormat::JsonLines},
                                                          {"mot", ClusterFormat::Mot}};
    const auto add = [&](const char* name, std::filesystem::path& path, const char* text,
                         const std::string& description) {
        command.add_option(name, path, description)->option_text(text)->group(group);
    };
    add("-o,--output", options.clusters, "FILE [-]",
        "File for the clusters, one row each; - is standard output");
    command
        .add_option("--format", options.format,
                    "Format of the clusters; mot is the MOTChallenge format and needs --track")
        ->transform(CLI::CheckedTransformer(formats).description(""))
        ->option_text("csv|jsonl|mot [csv]")
        ->group(group);
    add("--points", options.points, "FILE",
        "File for the events of all clusters, each with the index of its cluster (CSV); with " +
            methodsWith(&Method::has_labels));
    add("--centroids", options.centroids, "FILE",
        "File for the centroid and size of every cluster (CSV); with " +
            methodsWith(&Method::has_centroids));
    add("--tracks", options.tracks, "FILE",
        "File for the lifetime, path length and speed of every object (CSV); with --track");
    add("--frames", options.pictures.frames_dir, "DIR",
        "Directory for a picture (PNG) of each window");
    add("--overview", options.pictures.overview, "FILE",
        "File for a picture of several windows side by side (PNG)");
    add("--plot3d", options.pictures.plot3d, "FILE",
        "File for a plot in space and time of the window with the most events (PNG)");
    declareOptions(command, options.write)->group(group);
}

void checkOutput(const OutputSettings& output, const Settings& settings) {
    const Method& method = methodOf(settings.method);
    if (!method.has_labels && !output.points.empty()) {
        throw CLI::ValidationError("--points", "needs " + methodsWith(&Method::has_labels));
    }
    if (!method.has_centroids && !output.centroids.empty()) {
        throw CLI::ValidationError("--centroids", "needs " + methodsWith(&Method::has_centroids));
    }
    if (!settings.track.is_wanted && !output.tracks.empty()) {
        throw CLI::ValidationError("--tracks", "needs --track");
    }
    if (!settings.track.is_wanted && output.format == ClusterFormat::Mot) {
        throw CLI::ValidationError("--format", "mot needs --track");
    }
    checkPicture("--overview", output.pictures.overview);
    checkPicture("--plot3d", output.pictures.plot3d);
}

std::vector<NamedFile> filesOf(const OutputSettings& output) {
    return {{"--output", output.clusters},
            {"--points", output.points},
            {"--centroids", output.centroids},
            {"--tracks", output.tracks},
            {"--overview", output.pictures.overview},
            {"--plot3d", output.pictures.plot3d}};
}

}  // namespace kelvora::tool
