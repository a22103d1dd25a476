// SPDX-License-Identifier: MIT
#include "command_line/cluster_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <string>

#include "command_line/clustering_method.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/progress_line.hpp"
#include "command_line/time_range.hpp"
#include "command_line/window_pipeline.hpp"
#include "recording/event_cleaner.hpp"
#include "recording/event_reader.hpp"
#include "recording/recording_error.hpp"
#include "recording/window_slicer.hpp"

namespace kelvora::tool {

namespace {

const std::map<std::string, Polarity> kPolarities = {{"all", Polarity::All},
                                                     {"on", Polarity::On},
                                                     {"off", Polarity::Off},
                                                     {"separate", Polarity::Separate}};

const std::map<std::string, Method> kMethods = {
    {"grid", Method::Grid}, {"density", Method::Density}, {"centroid", Method::Centroid}};

void printSummary(const WindowPipeline& pipeline, const recording::EventReader& reader,
                  const recording::EventCleaner& cleaner) {
    fmt::print(stderr,
               "kelvora: {} clusters in {} windows with events; dropped {} events off the sensor, "
               "corrected {} times out of order",
               pipeline.clusterCount(), pipeline.windowCount(), cleaner.droppedOffSensor(),
               cleaner.clampedTimes());
    if (reader.skippedWords() > 0) {
        fmt::print(stderr, ", skipped {} unknown words", reader.skippedWords());
    }
    const std::string remark = pipeline.remark();
    fmt::print(stderr, "{}{}\n", remark.empty() ? "" : "; ", remark);
}

}  // namespace

ClusterCommand::ClusterCommand(CLI::App& program)
    : command(
          program.add_subcommand("cluster", "Find the clusters of a recording, window by window")) {
    declareOptions();
    command->parse_complete_callback([this] { checkOptions(); });
}

void ClusterCommand::declareOptions() {
    tool::declareOptions(*command, recording);
    command
        ->add_option(
            "--window", window,
            "Length of a window of event time, with its unit: us, ms or s. Windows begin at "
            "multiples of it")
        ->option_text("TIME [" + toString(window) + "]");
    command
        ->add_option("--from", from,
                     "Leave out events before this time after the first one, with unit")
        ->option_text("TIME [0s]");
    command
        ->add_option("--to", to,
                     "Leave out events from this time after the first one on, with unit")
        ->option_text("TIME");
    command
        ->add_option("--polarity", polarity,
                     "Events to cluster; 'separate' takes all, but wants both polarities in a cell")
        ->transform(CLI::CheckedTransformer(kPolarities).description(""))
        ->option_text("all|on|off|separate [all]");
    command->add_option("--method", method, "How to find clusters")
        ->transform(CLI::CheckedTransformer(kMethods).description(""))
        ->option_text("grid|density|centroid [grid]");
    tool::declareOptions(*command, grid);
    tool::declareOptions(*command, point);
    tool::declareOptions(*command, density);
    tool::declareOptions(*command, centroid);
    tool::declareOptions(*command, track);
    tool::declareOptions(*command, output);
}

void ClusterCommand::checkOptions() const {
    if (window.microseconds == 0) {
        throw CLI::ValidationError("--window", "must be longer than 0");
    }
    if (method != Method::Grid) {
        checkPointOptions();
    } else if (!output.points.empty()) {
        throw CLI::ValidationError("--points", "needs --method density or centroid");
    }
    checkCentroidOptions();
    checkTrackOptions();
    if (to && to->microseconds <= from.microseconds) {
        throw CLI::ValidationError("--to", "must be later than --from");
    }
}

void ClusterCommand::checkPointOptions() const {
    if (polarity == Polarity::Separate) {
        throw CLI::ValidationError("--polarity", "separate needs --method grid");
    }
    if (point.time_length && point.time_length->microseconds == 0) {
        throw CLI::ValidationError("--time-length", "must be longer than 0");
    }
    if (point.dim == 3 && window.microseconds > kLongestWindowIn3d.microseconds) {
        throw CLI::ValidationError(
            "--window", "must be at most " + toString(kLongestWindowIn3d) + " with --dim 3");
    }
}

void ClusterCommand::checkCentroidOptions() const {
    if (method == Method::Centroid) {
        if (centroid.clusters == 0) {
            throw CLI::ValidationError("--clusters", "is required with --method centroid");
        }
    } else if (!output.centroids.empty()) {
        throw CLI::ValidationError("--centroids", "needs --method centroid");
    }
}

void ClusterCommand::checkTrackOptions() const {
    if (track.is_wanted) {
        return;
    }
    if (!output.tracks.empty()) {
        throw CLI::ValidationError("--tracks", "needs --track");
    }
    if (output.format == ClusterFormat::Mot) {
        throw CLI::ValidationError("--format", "mot needs --track");
    }
}

std::unique_ptr<ClusteringMethod> ClusterCommand::makeMethod(recording::SensorSize sensor) const {
    if (method == Method::Density) {
        return makeDensityMethod(sensor, point, density, output.needLabels());
    }
    if (method == Method::Centroid) {
        return makeCentroidMethod(sensor, point, centroid);
    }
    return std::make_unique<GridMethod>(sensor, polarity, grid);
}

int ClusterCommand::run() const {
    const auto reader = recording::openRecording(recording.path, recording.read);
    const recording::SensorSize sensor = requireSensorSize(*reader, recording);
    WindowPipeline pipeline(makeMethod(sensor), output, track, sensor, window.microseconds);
    recording::EventCleaner cleaner(sensor);
    TimeRange range(from, to);
    recording::WindowSlicer slicer(window.microseconds);
    ProgressLine progress(recording.path.string(), !output.is_quiet);

    // A defect does not undo what was read before it: it is reported when all of that is written.
    std::exception_ptr defect;
    try {
        std::vector<Event2D> events;
        while (!isInterrupted() && !range.isOver() && reader->read(events)) {
            cleaner.clean(events);
            range.keepInside(events);
            keepPolarity(events, polarity);
            slicer.add(events);
            pipeline.process(slicer);
            progress.update(reader->bytesRead(), reader->fileSize());
        }
    } catch (const recording::RecordingError&) {
        defect = std::current_exception();
    }
    slicer.finish();
    pipeline.process(slicer);
    pipeline.finish();
    progress.clear();

    if (!output.is_quiet) {
        printSummary(pipeline, *reader, cleaner);
    }
    if (defect) {
        std::rethrow_exception(defect);
    }
    return isInterrupted() ? kExitInterrupted : 0;
}

}  // namespace kelvora::tool
