// SPDX-License-Identifier: MIT
#include "command_line/cluster_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <string>

#include "command_line/interrupt.hpp"
#include "command_line/progress_line.hpp"
#include "command_line/window_pipeline.hpp"
#include "command_line/window_reader.hpp"
#include "kelvora/recording/event_reader.hpp"

namespace kelvora::tool {

namespace {

void printSummary(const WindowClusterer& clusterer, const WindowReader& reader) {
    const recording::EventCleaner& cleaner = reader.eventCleaner();
    fmt::print(stderr,
               "kelvora: {} clusters in {} windows with events; dropped {} events off the sensor, "
               "corrected {} times out of order",
               clusterer.clusterCount(), clusterer.windowCount(), cleaner.droppedOffSensor(),
               cleaner.clampedTimes());
    if (reader.source().skippedWords() > 0) {
        fmt::print(stderr, ", skipped {} unknown words", reader.source().skippedWords());
    }
    const std::string remark = clusterer.remark();
    fmt::print(stderr, "{}{}\n", remark.empty() ? "" : "; ", remark);
}

}  // namespace

ClusterCommand::ClusterCommand(CLI::App& program)
    : command(
          program.add_subcommand("cluster", "Find the clusters of a recording, window by window")) {
    declareOptions(*command, options);
    declareOptions(*command, output);
    command->parse_complete_callback([this] {
        checkOptions(options);
        checkOutputOptions();
    });
}

void ClusterCommand::checkOutputOptions() const {
    if (options.method == Method::Grid && !output.points.empty()) {
        throw CLI::ValidationError("--points", "needs --method density or centroid");
    }
    if (options.method != Method::Centroid && !output.centroids.empty()) {
        throw CLI::ValidationError("--centroids", "needs --method centroid");
    }
    if (options.track.is_wanted) {
        return;
    }
    if (!output.tracks.empty()) {
        throw CLI::ValidationError("--tracks", "needs --track");
    }
    if (output.format == ClusterFormat::Mot) {
        throw CLI::ValidationError("--format", "mot needs --track");
    }
}

int ClusterCommand::run() const {
    const RecordingOptions& recording = options.recording;
    auto source = recording::openRecording(recording.path, recording.read);
    const recording::SensorSize sensor = requireSensorSize(*source, recording);
    WindowReader reader(std::move(source), sensor, options.windows);
    WindowPipeline pipeline(makeMethod(options, sensor, output.needLabels()), output, options.track,
                            sensor, options.windows.window.microseconds);
    ProgressLine progress(recording.path.string(), !output.is_quiet);

    bool has_more = true;
    while (has_more && !isInterrupted()) {
        has_more = reader.read();
        pipeline.process(reader.slicer());
        progress.update(reader.source().bytesRead(), reader.source().fileSize());
    }
    pipeline.finish();
    progress.clear();

    if (!output.is_quiet) {
        printSummary(pipeline.windowClusterer(), reader);
    }
    if (reader.defect()) {
        std::rethrow_exception(reader.defect());
    }
    return isInterrupted() ? kExitInterrupted : 0;
}

}  // namespace kelvora::tool
