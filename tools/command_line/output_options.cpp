// SPDX-License-Identifier: MIT
#include "command_line/output_options.hpp"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace kelvora::tool {

void declareOptions(CLI::App& command, OutputOptions& options) {
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
    command.add_flag("-q,--quiet", options.is_quiet, "Print no summary and no progress")
        ->group(group);
}

}  // namespace kelvora::tool
