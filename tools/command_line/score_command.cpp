// SPDX-License-Identifier: MIT
#include "command_line/score_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command_line/file_check.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/standard_streams.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "scoring/box_table.hpp"
#include "scoring/frame.hpp"
#include "sessions/parameters.hpp"

namespace kelvora::tool {

namespace {

constexpr std::uint64_t kMegabyte = 1'000'000;
constexpr std::uint64_t kMemoryPerPair = 64;  // of the lists of pairs and two matrices, in bytes

/// The results shown to the user.
struct Score {
    scoring::ScoreFigures figures;
    scoring::ScoreOptions options;
    std::uint64_t interval_us;       ///< Time between rows of truth.
    std::size_t tentative_left_out;  ///< Clusters of unconfirmed tracks.
    std::size_t untracked_left_out;  ///< Clusters without a track, in a file with tracks.
    std::size_t outside_truth;       ///< Clusters before the first or after the last truth.

    std::optional<std::uint64_t> ifTracked(std::uint64_t figure) const {
        return figures.has_tracks ? std::optional(figure) : std::nullopt;
    }
};

std::string textOf(std::optional<double> figure) {
    return figure ? fmt::format("{:.4f}", *figure) : "-";
}

std::string textOf(std::optional<std::uint64_t> figure) {
    return figure ? fmt::format("{}", *figure) : "-";
}

template <class Figure>
nlohmann::ordered_json jsonOf(std::optional<Figure> figure) {
    return figure ? nlohmann::ordered_json(*figure) : nlohmann::ordered_json(nullptr);
}

std::string tableOf(const Score& score) {
    std::string table;
    const auto out = std::back_inserter(table);
    const scoring::ScoreFigures& figures = score.figures;
    fmt::format_to(out, "frames             {}\n", figures.frames);
    fmt::format_to(out, "objects            {} ({} more ignored)\n", figures.objects,
                   figures.ignored_objects);
    fmt::format_to(out, "clusters           {} ({} of them on ignored objects)\n", figures.clusters,
                   figures.ignored_clusters);
    fmt::format_to(out, "matches            {} (IoU of {} or more)\n", figures.matches,
                   score.options.min_iou);
    fmt::format_to(out, "misses             {}\n", figures.misses());
    fmt::format_to(out, "false positives    {}\n", figures.falsePositives());
    fmt::format_to(out, "precision          {}\n", textOf(figures.precision()));
    fmt::format_to(out, "recall             {}\n", textOf(figures.recall()));
    fmt::format_to(out, "MOTA               {}{}\n", textOf(figures.mota()),
                   figures.has_tracks ? "" : " (MODA: without track_id, switches do not count)");
    fmt::format_to(out, "MOTP               {} (mean IoU of matches)\n", textOf(figures.motp()));
    fmt::format_to(out, "switches           {}\n", textOf(score.ifTracked(figures.switches)));
    fmt::format_to(out, "switches per 10 s  {}\n",
                   textOf(figures.switchesPerTenSeconds(score.interval_us)));
    fmt::format_to(out, "fragmentations     {}\n", textOf(score.ifTracked(figures.fragmentations)));
    fmt::format_to(out, "trajectories       {}\n", figures.trajectories);
    fmt::format_to(out, "mostly tracked     {} (80 % of their frames or more)\n",
                   figures.mostly_tracked);
    fmt::format_to(out, "partially tracked  {}\n", figures.partially_tracked);
    fmt::format_to(out, "mostly lost        {} (less than 20 %)\n", figures.mostly_lost);
    fmt::format_to(
        out,
        "left out           {} tentative, {} without track, {} outside the time of the truth\n",
        score.tentative_left_out, score.untracked_left_out, score.outside_truth);
    return table;
}

nlohmann::ordered_json toJson(const Score& score) {
    const scoring::ScoreFigures& figures = score.figures;
    return {{"min_iou", score.options.min_iou},
            {"min_visibility", score.options.min_visibility},
            {"include_still", score.options.include_still},
            {"has_tracks", figures.has_tracks},
            {"frames", figures.frames},
            {"objects", figures.objects},
            {"ignored_objects", figures.ignored_objects},
            {"clusters", figures.clusters},
            {"ignored_clusters", figures.ignored_clusters},
            {"matches", figures.matches},
            {"misses", figures.misses()},
            {"false_positives", figures.falsePositives()},
            {"precision", jsonOf(figures.precision())},
            {"recall", jsonOf(figures.recall())},
            {"mota", jsonOf(figures.mota())},
            {"motp", jsonOf(figures.motp())},
            {"switches", jsonOf(score.ifTracked(figures.switches))},
            {"switches_per_10_s", jsonOf(figures.switchesPerTenSeconds(score.interval_us))},
            {"fragmentations", jsonOf(score.ifTracked(figures.fragmentations))},
            {"trajectories", figures.trajectories},
            {"mostly_tracked", figures.mostly_tracked},
            {"partially_tracked", figures.partially_tracked},
            {"mostly_lost", figures.mostly_lost},
            {"tentative_left_out", score.tentative_left_out},
            {"untracked_left_out", score.untracked_left_out},
            {"outside_truth", score.outside_truth}};
}

/// With different window lengths scores are meaningless, even if some of the times agree.
void warnOfIntervals(const scoring::FrameSequence& sequence) {
    if (sequence.truth_interval_us != 0 && sequence.cluster_interval_us != 0 &&
        sequence.truth_interval_us != sequence.cluster_interval_us) {
        printError(fmt::format(
            "kelvora: the truth has rows every {} us, but the clusters every {} us: were "
            "--truth-interval and --window the same?\n",
            sequence.truth_interval_us, sequence.cluster_interval_us));
    }
}

}  // namespace

ScoreCommand::ScoreCommand(CLI::App& program)
    : Command(program, "score",
              "Compare clusters with the truth: precision, recall, CLEAR MOT measures") {
    command
        ->add_option("--truth", truth,
                     "True boxes of the objects, as written by 'kelvora simulate --truth'")
        ->required()
        ->option_text("FILE REQUIRED");
    command->add_option("--clusters", clusters, "Clusters, as written by 'kelvora cluster'")
        ->required()
        ->option_text("FILE REQUIRED");
    command
        ->add_option(
            "--min-iou", options.min_iou,
            "Minimum intersection over union of an object and its cluster, above 0, up to 1")
        ->check(CLI::Range(0.0, 1.0).description(""))
        ->capture_default_str();
    command
        ->add_option("--min-visibility", options.min_visibility,
                     "Ignore objects of which a smaller share is visible")
        ->check(CLI::Range(0.0, 1.0).description(""))
        ->capture_default_str();
    command->add_flag("--include-still", options.include_still, "Include objects that do not move");
    command->add_flag("--tentative", with_tentative,
                      "Include tentative tracks, which are not confirmed yet");
    const Range& memory = findParameter("max_memory")->range;
    command
        ->add_option_function<std::uint64_t>(
            "--max-memory",
            [this](std::uint64_t megabytes) {
                options.most_pairs = megabytes * kMegabyte / kMemoryPerPair;
            },
            "Memory for objects and clusters that overlap at the same time")
        ->check(CLI::Range(static_cast<std::uint64_t>(memory.smallest),
                           static_cast<std::uint64_t>(memory.largest))
                    .description(""))
        ->option_text(fmt::format("MB [{}]", options.most_pairs * kMemoryPerPair / kMegabyte));
    declareOptions(*command, report_options);
    command->parse_complete_callback([this] {
        if (!(options.min_iou > 0.0)) {
            throw CLI::ValidationError("--min-iou", "must be above 0");
        }
    });
}

int ScoreCommand::run() const {
    checkFiles({{{"--truth", truth}, {"--clusters", clusters}}, filesOf(report_options), {}});
    ReportFiles report(report_options);
    scoring::ClusterTable table =
        scoring::readClusters(clusters, with_tentative, throwIfInterrupted);
    std::vector<scoring::TruthBox> objects = scoring::readTruth(truth, throwIfInterrupted);
    const bool has_both = !objects.empty() && !table.clusters.empty();
    const scoring::FrameSequence sequence =
        scoring::joinFrames(std::move(objects), std::move(table.clusters));
    if (has_both && sequence.common_times == 0) {
        throw recording::RecordingError(
            recording::ErrorKind::NotSuitable, clusters.string(),
            "has no row at any of the times of " + truth.string(), {},
            "cluster with a --window as long as the --truth-interval of the truth");
    }
    warnOfIntervals(sequence);

    scoring::ScoreOptions score_options = options;
    score_options.has_tracks = table.has_tracks;
    scoring::TrackingScore tracking(score_options);
    for (const scoring::Frame& frame : sequence.frames) {
        throwIfInterrupted();
        add(frame, tracking);
    }
    const Score score = {tracking.figures(), options,         sequence.truth_interval_us,
                         table.tentative,    table.untracked, sequence.clusters_outside};
    report.write(tableOf(score), toJson(score));
    throwIfTerminated();
    report.close();
    return exitStatus();
}

/// \throws recording::RecordingError  if too many boxes overlap.
void ScoreCommand::add(const scoring::Frame& frame, scoring::TrackingScore& tracking) const {
    try {
        tracking.add(frame);
    } catch (const scoring::TooManyOverlaps&) {
        throw recording::RecordingError(
            recording::ErrorKind::NotSuitable, clusters.string(),
            "has too many boxes that overlap with objects and each other",
            {recording::ErrorPlace::Unit::EventAt, frame.clusters.front().timestamp_us},
            "check the file, or allow more memory with --max-memory");
    }
}

}  // namespace kelvora::tool
