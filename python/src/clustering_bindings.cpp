// SPDX-License-Identifier: MIT
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bindings.hpp"
#include "cluster_rows.hpp"
#include "errors.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "read_options.hpp"
#include "sessions/cluster_rows.hpp"
#include "sessions/recording_session.hpp"
#include "sessions/session.hpp"
#include "sessions/window_reader.hpp"
#include "settings.hpp"
#include "text_fields.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

/// The columns that tracking adds to a row. The state is padded with zeros.
struct TrackColumns {
    std::int64_t track_id;
    float vx;
    float vy;
    std::array<char, 9> state;
};

/// The results for a recording.
struct Found {
    std::vector<tool::ClusterRow> rows;
    std::exception_ptr defect;
    std::uint64_t windows = 0;
    std::uint64_t dropped = 0;
    std::uint64_t clamped = 0;
    std::uint64_t skipped_words = 0;
    std::string remark;
};

/// A recording to cluster, and how.
struct Task {
    std::filesystem::path path;
    recording::ReadOptions read;
    tool::Settings settings;
};

std::optional<Size> toSize(const py::object& sensor) {
    try {
        return sensor.cast<std::optional<Size>>();
    } catch (const py::cast_error&) {
        throw std::invalid_argument("sensor must be a pair of integers from 1 to 65536");
    }
}

/// \param keywords  As for `cluster_recordings`: how to read the recording, and parameters.
Task toTask(const std::filesystem::path& path, const py::dict& keywords) {
    const auto parameters = py::reinterpret_steal<py::dict>(PyDict_Copy(keywords.ptr()));
    const auto take = [&](const char* name) -> py::object {
        return parameters.attr("pop")(name, py::none());
    };
    const auto takeText = [&](const char* name) -> std::optional<std::string> {
        const py::object text = take(name);
        return text.is_none() ? std::nullopt : std::optional(toString(name, text));
    };
    Task task;
    task.path = path;
    task.read = toReadOptions(toSize(take("sensor")), takeText("input_format"), takeText("columns"),
                              takeText("time_unit"));
    tool::SettingsBuilder builder;
    setParameters(builder, parameters);
    checkParameters(builder);
    task.settings = builder.settings;
    return task;
}

TrackColumns toColumns(const tool::ClusterRow& row) {
    TrackColumns columns{};
    columns.track_id = row.track.id;
    columns.vx = row.track.vx;
    columns.vy = row.track.vy;
    const std::string_view state = row.state;
    std::copy(state.begin(), state.end(), columns.state.begin());
    return columns;
}

Found findClusters(const Task& task) {
    tool::WindowReader reader =
        tool::openWindows(task.path, task.read, task.settings, kKeywordWording);
    tool::Session session = tool::makeSession(reader, task.settings);
    Found found;
    bool has_more = true;
    while (has_more) {
        has_more = reader.read();
        recording::Window window;
        while (reader.next(window)) {
            const auto rows = tool::rowsOf(session.cluster(window));
            found.rows.insert(found.rows.end(), rows.begin(), rows.end());
        }
    }
    found.defect = reader.defect();
    found.windows = session.windowCount();
    found.dropped = reader.eventCleaner().droppedOffSensor();
    found.clamped = reader.eventCleaner().clampedTimes();
    found.skipped_words = reader.source().skippedWords();
    found.remark = tool::remarksOf(session, reader);
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

py::array tracksOf(const std::vector<tool::ClusterRow>& rows) {
    py::array_t<TrackColumns> tracks(static_cast<py::ssize_t>(rows.size()));
    std::transform(rows.begin(), rows.end(), tracks.mutable_data(), toColumns);
    return tracks;
}

py::dict clusterRecording(const std::filesystem::path& path, const py::dict& keywords) {
    const Task task = toTask(path, keywords);
    Found found;
    {
        const py::gil_scoped_release release;
        found = findClusters(task);
    }
    py::dict result;
    result["rows"] = toArray(found.rows);
    result["tracks"] =
        task.settings.track.is_wanted ? py::object(tracksOf(found.rows)) : py::none();
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
    module.attr("TRACK_DTYPE") = withStrings(py::dtype::of<TrackColumns>());
    module.def(
        "check_clustering",
        [](const py::dict& keywords) { static_cast<void>(toTask({}, keywords)); },
        py::arg("keywords"),
        "check_clustering(keywords)\n\nRaise the errors that `cluster_recording` would raise.");
    module.def(
        "cluster_recording", &clusterRecording, py::arg("path"), py::arg("keywords"),
        "cluster_recording(path, keywords)\n\nFind the clusters of a recording. The keywords "
        "are the same as for `cluster_recordings`.");
}

}  // namespace kelvora::python
