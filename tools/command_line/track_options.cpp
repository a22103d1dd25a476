// SPDX-License-Identifier: MIT
#include "command_line/track_options.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "command_line/number_checks.hpp"

namespace kelvora::tool {

void declareOptions(CLI::App& command, TrackOptions& options) {
    const char* const group = "Tracking";
    CLI::Option* const track =
        command
            .add_flag("--track", options.is_wanted,
                      "Track objects from window to window: adds the columns "
                      "track_id,vx,vy,state, and rows for objects hidden in other clusters")
            ->group(group);
    const auto add = [&](const char* name, auto& value, const char* unit, const char* description) {
        return command.add_option(name, value, description)
            ->option_text(fmt::format("{} [{}]", unit, value))
            ->needs(track)
            ->group(group);
    };
    add("--max-distance", options.max_distance, "PIXELS",
        "Largest distance between a cluster and the predicted position of its track")
        ->check(isNotNegative());
    add("--max-size-change", options.max_size_change, "PIXELS",
        "Largest difference between a cluster and the usual width and height of its track")
        ->check(isNotNegative());
    add("--max-missed", options.max_missed, "WINDOWS",
        "Number of windows that a track survives without a cluster")
        ->check(isNotNegative());
    add("--min-hits", options.min_hits, "WINDOWS",
        "Number of windows with a cluster that confirm a track")
        ->check(isPositive());
}

bool isFollowed(const ClusterTracker::Track& track) {
    return track.state == ClusterTracker::State::Confirmed &&
           (track.cluster >= 0 || track.is_hidden);
}

}  // namespace kelvora::tool
