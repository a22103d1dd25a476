// SPDX-License-Identifier: MIT
#include <fmt/format.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "bindings.hpp"
#include "cluster_rows.hpp"
#include "command_line/cluster_rows.hpp"
#include "command_line/clustering_options.hpp"
#include "command_line/window_clusterer.hpp"
#include "command_line/window_reader.hpp"
#include "errors.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/recording_error.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

/// Options of the tool's command `cluster` without leading dashes, and their values.
using Options = std::map<std::string, std::string>;

/// The columns that tracking adds to a row. The state is padded with zeros.
struct TrackColumns {
    std::int64_t track_id;
    float vx;
    float vy;
    std::array<char, 9> state;
};

/// The results for a recording.
struct Found {
    std::vector<ClusterRow> rows;
    std::vector<TrackColumns> tracks;  ///< One per row.
    std::exception_ptr defect;
    std::uint64_t windows = 0;
    std::uint64_t dropped = 0;
    std::uint64_t clamped = 0;
    std::uint64_t skipped_words = 0;
    std::string remark;
};

/// Reads options as the tool does: names, defaults and bounds are the same.
///
/// \throws std::invalid_argument  for a value that the tool rejects.
tool::ClusteringOptions toClusteringOptions(const Options& given,
                                            const std::filesystem::path& path) {
    tool::ClusteringOptions options;
    CLI::App app;
    app.set_help_flag();
    tool::declareOptions(app, options);
    std::vector<std::string> arguments = {"-"};
    for (const auto& [name, value] : given) {
        if (app.get_option_no_throw("--" + name) == nullptr) {
            throw py::type_error("no option is called --" + name);
        }
        arguments.push_back(fmt::format("--{}={}", name, value));
    }
    try {
        app.parse(arguments);
        tool::checkOptions(options);
    } catch (const CLI::ParseError& error) {
        throw std::invalid_argument(error.what());
    }
    options.recording.path = path;
    return options;
}

TrackColumns toColumns(const tool::ClusterRow& row) {
    TrackColumns columns{};
    if (row.track != nullptr) {
        columns.track_id = row.track->id;
        columns.vx = row.track->vx;
        columns.vy = row.track->vy;
    }
    const std::string_view state = tool::stateOf(row);
    std::copy(state.begin(), state.end(), columns.state.begin());
    return columns;
}

void append(const tool::WindowClusters& window, bool with_tracks, Found& found) {
    for (const tool::ClusterRow& row : tool::rowsOf(window)) {
        found.rows.push_back(toRow(*row.box, window.time_origin));
        if (with_tracks) {
            found.tracks.push_back(toColumns(row));
        }
    }
}

recording::SensorSize requireSensor(const recording::EventReader& reader,
                                    const std::filesystem::path& path) {
    const auto sensor = reader.sensorSize();
    if (!sensor) {
        throw recording::RecordingError(recording::ErrorKind::NoSensorSize, path.string(),
                                        "does not state the size of its sensor", {},
                                        {"state it with {}", recording::Setting::SensorSize});
    }
    return *sensor;
}

Found findClusters(const tool::ClusteringOptions& options) {
    auto source = recording::openRecording(options.recording.path, options.recording.read);
    const recording::SensorSize sensor = requireSensor(*source, options.recording.path);
    tool::WindowReader reader(std::move(source), sensor, options.windows);
    tool::WindowClusterer clusterer(tool::makeMethod(options, sensor, false), options.track,
                                    options.windows.window.microseconds);
    Found found;
    bool has_more = true;
    while (has_more) {
        has_more = reader.read();
        recording::Window window;
        while (reader.slicer().next(window)) {
            append(clusterer.cluster(window), options.track.is_wanted, found);
        }
    }
    found.defect = reader.defect();
    found.windows = clusterer.windowCount();
    found.dropped = reader.eventCleaner().droppedOffSensor();
    found.clamped = reader.eventCleaner().clampedTimes();
    found.skipped_words = reader.source().skippedWords();
    found.remark = clusterer.remark();
    return found;
}

py::object errorOf(const std::exception_ptr& defect) {
    if (!defect) {
        return py::none();
    }
    try {
        std::rethrow_exception(defect);
    } catch (const recording::RecordingError& error) {
        return toPython(error);
    }
}

py::dict clusterRecording(const std::filesystem::path& path, const Options& given) {
    const tool::ClusteringOptions options = toClusteringOptions(given, path);
    Found found;
    {
        const py::gil_scoped_release release;
        found = findClusters(options);
    }
    py::array_t<TrackColumns> tracks(static_cast<py::ssize_t>(found.tracks.size()));
    std::copy(found.tracks.begin(), found.tracks.end(), tracks.mutable_data());
    py::dict result;
    result["rows"] = toArray(found.rows);
    result["tracks"] = options.track.is_wanted ? py::object(tracks) : py::none();
    result["error"] = errorOf(found.defect);
    result["windows"] = found.windows;
    result["dropped"] = found.dropped;
    result["clamped"] = found.clamped;
    result["skipped_words"] = found.skipped_words;
    result["remark"] = found.remark;
    return result;
}

}  // namespace

void bindClustering(py::module_& module) {
    PYBIND11_NUMPY_DTYPE(TrackColumns, track_id, vx, vy, state);
    module.def(
        "check_clustering",
        [](const Options& options) { static_cast<void>(toClusteringOptions(options, {})); },
        py::arg("options"),
        "check_clustering(options)\n\nRefuse what `cluster_recording` would refuse.");
    module.def("cluster_recording", &clusterRecording, py::arg("path"), py::arg("options"),
               "cluster_recording(path, options)\n\nFind the clusters of a recording. Options are "
               "named and written as for the command-line tool.");
}

}  // namespace kelvora::python
