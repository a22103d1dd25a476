// SPDX-License-Identifier: MIT
#include "command_line/output_options.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <string>
#include <system_error>
#include <vector>

#include "sessions/methods.hpp"

namespace kelvora::tool {

void declareOptions(CLI::App& command, OutputSettings& options) {
    const char* const group = "Output";
    const std::map<std::string, ClusterFormat> formats = {{"csv", ClusterFormat::Csv},
                                                          {"jsonl", ClusterFormat::JsonLines},
                                                          {"mot", ClusterFormat::Mot}};
    const auto add = [&](const char* name, std::filesystem::path& path, const char* text,
                         const char* description) {
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
        "File for every event of a cluster with its cluster's number (CSV); not with --method "
        "grid");
    add("--centroids", options.centroids, "FILE",
        "File for the centroid and size of every cluster (CSV); with --method centroid");
    add("--tracks", options.tracks, "FILE",
        "File for the lifetime, path length and speed of every object (CSV); with --track");
    add("--frames", options.pictures.frames_dir, "DIR",
        "Directory for a picture (PNG) of each window");
    add("--overview", options.pictures.overview, "FILE", "File for a sheet of some windows (PNG)");
    add("--plot3d", options.pictures.plot3d, "FILE",
        "File for a plot in space and time of the window with the most events (PNG)");
}

namespace {

/// An output to a file and its option.
struct NamedOutput {
    const char* option;
    std::filesystem::path path;
};

std::vector<NamedOutput> filesOf(const OutputSettings& output) {
    const std::vector<NamedOutput> all = {{"--output", output.clusters},
                                          {"--points", output.points},
                                          {"--centroids", output.centroids},
                                          {"--tracks", output.tracks},
                                          {"--overview", output.pictures.overview},
                                          {"--plot3d", output.pictures.plot3d}};
    std::vector<NamedOutput> wanted;
    std::copy_if(all.begin(), all.end(), std::back_inserter(wanted),
                 [](const NamedOutput& one) { return !one.path.empty(); });
    return wanted;
}

/// Devices such as /dev/null may take several outputs.
bool isDevice(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_character_file(path, error);
}

void checkNames(const OutputSettings& output) {
    const std::vector<NamedOutput> files = filesOf(output);
    for (std::size_t i = 0; i < files.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            if (files[i].path.lexically_normal() == files[j].path.lexically_normal() &&
                !isDevice(files[i].path)) {
                throw CLI::ValidationError(
                    files[i].option, fmt::format("must be another file than {}", files[j].option));
            }
        }
    }
    for (const NamedOutput& picture : {NamedOutput{"--overview", output.pictures.overview},
                                       NamedOutput{"--plot3d", output.pictures.plot3d}}) {
        if (!picture.path.empty() && picture.path.extension() != ".png") {
            throw CLI::ValidationError(picture.option, "must end in .png");
        }
    }
}

}  // namespace

void checkOutput(const OutputSettings& output, const Settings& settings) {
    const Method& method = methodOf(settings.method);
    if (!method.has_labels && !output.points.empty()) {
        throw CLI::ValidationError("--points", "needs --method density or centroid");
    }
    if (!method.has_centroids && !output.centroids.empty()) {
        throw CLI::ValidationError("--centroids", "needs --method centroid");
    }
    if (!settings.track.is_wanted && !output.tracks.empty()) {
        throw CLI::ValidationError("--tracks", "needs --track");
    }
    if (!settings.track.is_wanted && output.format == ClusterFormat::Mot) {
        throw CLI::ValidationError("--format", "mot needs --track");
    }
    checkNames(output);
}

}  // namespace kelvora::tool
