// SPDX-License-Identifier: MIT
#include "command_line/cluster_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <string>

#include "command_line/centroid_writer.hpp"
#include "command_line/clustering_method.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/point_writer.hpp"
#include "command_line/progress_line.hpp"
#include "command_line/time_range.hpp"
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

const std::map<std::string, ClusterFormat> kFormats = {{"csv", ClusterFormat::Csv},
                                                       {"jsonl", ClusterFormat::JsonLines}};

/// Clusters window after window, and hands the results to whoever wants them.
class WindowPipeline {
public:
    /// \param points_  Null if the events of clusters are not wanted.
    /// \param centroids_  Likewise.
    WindowPipeline(ClusteringMethod& method_, ClusterWriter& writer_, PointWriter* points_,
                   CentroidWriter* centroids_, Pictures& pictures_)
        : method(method_),
          writer(writer_),
          points(points_),
          centroids(centroids_),
          pictures(pictures_) {}

    /// Takes all windows that are complete, up to an interrupt.
    void process(recording::WindowSlicer& slicer) {
        recording::Window window;
        while (!isInterrupted() && slicer.next(window)) {
            method.cluster(window, found);
            writer.write(found);
            if (points != nullptr) {
                points->write(window, found);
            }
            if (centroids != nullptr) {
                centroids->write(window.end_time, found);
            }
            pictures.add(window, found);
            ++window_count;
            cluster_count += found.clusters.size();
        }
    }

    std::uint64_t windowCount() const { return window_count; }
    std::uint64_t clusterCount() const { return cluster_count; }

private:
    ClusteringMethod& method;
    ClusterWriter& writer;
    PointWriter* points;
    CentroidWriter* centroids;
    Pictures& pictures;
    WindowClusters found;
    std::uint64_t window_count = 0;
    std::uint64_t cluster_count = 0;
};

void printSummary(const WindowPipeline& pipeline, const recording::EventReader& reader,
                  const recording::EventCleaner& cleaner, const std::string& remark) {
    fmt::print(stderr,
               "kelvora: {} clusters in {} windows with events; dropped {} events off the sensor, "
               "corrected {} times out of order",
               pipeline.clusterCount(), pipeline.windowCount(), cleaner.droppedOffSensor(),
               cleaner.clampedTimes());
    if (reader.skippedWords() > 0) {
        fmt::print(stderr, ", skipped {} unknown words", reader.skippedWords());
    }
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
    const char* const output_group = "Output";
    command
        ->add_option("-o,--output", output,
                     "File for the clusters, one row each; - is standard output")
        ->option_text("FILE [-]")
        ->group(output_group);
    command->add_option("--format", format, "Format of the clusters")
        ->transform(CLI::CheckedTransformer(kFormats).description(""))
        ->option_text("csv|jsonl [csv]")
        ->group(output_group);
    command
        ->add_option("--points", points,
                     "File for every event of a cluster with its cluster's number (CSV); not with "
                     "--method grid")
        ->option_text("FILE")
        ->group(output_group);
    command
        ->add_option("--centroids", centroids,
                     "File for the centroid and size of every cluster (CSV); with --method "
                     "centroid")
        ->option_text("FILE")
        ->group(output_group);
    command
        ->add_option("--frames", pictures.frames_dir,
                     "Directory for a picture (PNG) of each window")
        ->option_text("DIR")
        ->group(output_group);
    command->add_option("--overview", pictures.overview, "File for a sheet of some windows (PNG)")
        ->option_text("FILE")
        ->group(output_group);
    command
        ->add_option("--plot3d", pictures.plot3d,
                     "File for a plot in space and time of the window with most events (PNG)")
        ->option_text("FILE")
        ->group(output_group);
    command->add_flag("-q,--quiet", is_quiet, "No closing line and no progress")
        ->group(output_group);
}

void ClusterCommand::checkOptions() const {
    if (window.microseconds == 0) {
        throw CLI::ValidationError("--window", "must be longer than 0");
    }
    if (method != Method::Grid) {
        checkPointOptions();
    } else if (!points.empty()) {
        throw CLI::ValidationError("--points", "needs --method density or centroid");
    }
    checkCentroidOptions();
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
    } else if (!centroids.empty()) {
        throw CLI::ValidationError("--centroids", "needs --method centroid");
    }
}

std::unique_ptr<ClusteringMethod> ClusterCommand::makeMethod(recording::SensorSize sensor) const {
    if (method == Method::Density) {
        return makeDensityMethod(sensor, point, density, !points.empty() || pictures.isWanted());
    }
    if (method == Method::Centroid) {
        return makeCentroidMethod(sensor, point, centroid);
    }
    return std::make_unique<GridMethod>(sensor, polarity, grid);
}

int ClusterCommand::run() const {
    const auto reader = recording::openRecording(recording.path, recording.read);
    const recording::SensorSize sensor = requireSensorSize(*reader, recording);
    const auto clustering = makeMethod(sensor);
    ClusterWriter writer(output, format);
    std::optional<PointWriter> point_writer;
    if (!points.empty()) {
        point_writer.emplace(points);
    }
    std::optional<CentroidWriter> centroid_writer;
    if (!centroids.empty()) {
        centroid_writer.emplace(centroids);
    }
    Pictures drawn(pictures, sensor);
    WindowPipeline pipeline(*clustering, writer, point_writer ? &*point_writer : nullptr,
                            centroid_writer ? &*centroid_writer : nullptr, drawn);
    recording::EventCleaner cleaner(sensor);
    TimeRange range(from, to);
    recording::WindowSlicer slicer(window.microseconds);
    ProgressLine progress(recording.path.string(), !is_quiet);

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
    drawn.finish();
    progress.clear();

    if (!is_quiet) {
        printSummary(pipeline, *reader, cleaner, clustering->remark());
    }
    if (defect) {
        std::rethrow_exception(defect);
    }
    return isInterrupted() ? kExitInterrupted : 0;
}

}  // namespace kelvora::tool
