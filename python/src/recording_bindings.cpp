// SPDX-License-Identifier: MIT
#include <fmt/format.h>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bindings.hpp"
#include "errors.hpp"
#include "event_records.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/formats.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "ownership.hpp"
#include "read_options.hpp"
#include "recording/event_cleaner.hpp"
#include "settings.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr const char* kDoc =
    R"(The events of a recording, chunk by chunk. Returned by `read`.

Several threads may iterate over the same object: each chunk goes to one of them. The GIL is
released while events are read.
)";

/// Reads a recording in chunks of equal size. As with `Clusterer`, the GIL must not be held.
class RecordingReader {
public:
    /// \param is_cleaned  Whether to clean the events with `EventCleaner`.
    RecordingReader(const std::filesystem::path& path, const recording::ReadOptions& options,
                    std::size_t chunk_size_, bool is_cleaned)
        : reader(recording::openRecording(path, options)), chunk_size(chunk_size_) {
        if (is_cleaned) {
            constexpr int kAnySide = recording::kLargestSensorSide;
            cleaner.emplace(
                reader->sensorSize().value_or(recording::SensorSize{kAnySide, kAnySide}));
        }
    }

    /// The next events; empty at the end.
    ///
    /// \throws RecordingError  at a defect, after all events before it were returned.
    std::vector<Event2D> next() {
        const std::lock_guard<std::mutex> lock(mutex);
        if (pending.size() - taken < chunk_size) {
            fill();
        }
        const std::size_t count = std::min(chunk_size, pending.size() - taken);
        const auto first = pending.begin() + static_cast<std::ptrdiff_t>(taken);
        taken += count;
        return {first, first + static_cast<std::ptrdiff_t>(count)};
    }

    std::string format() const { return reader->format(); }
    std::optional<recording::SensorSize> sensorSize() const { return reader->sensorSize(); }

    std::uint64_t dropped() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return cleaner ? cleaner->droppedOffSensor() : 0;
    }

    std::uint64_t clamped() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return cleaner ? cleaner->clampedTimes() : 0;
    }

    std::uint64_t skippedWords() const {
        const std::lock_guard<std::mutex> lock(mutex);
        return reader->skippedWords();
    }

private:
    void fill() {
        std::vector<Event2D> rest(pending.begin() + static_cast<std::ptrdiff_t>(taken),
                                  pending.end());
        pending.swap(rest);
        taken = 0;
        // Return events from a pipe as they arrive.
        const bool is_pipe = reader->fileSize() == 0;
        while (pending.size() < chunk_size && !(is_pipe && !pending.empty()) && append()) {
        }
    }

    bool append() {
        try {
            if (!reader->read(events)) {
                return false;
            }
        } catch (const recording::RecordingError&) {
            // Return the events before the defect first. The next call throws the error.
            if (pending.empty()) {
                throw;
            }
            return false;
        }
        if (cleaner) {
            cleaner->clean(events);
        }
        pending.insert(pending.end(), events.begin(), events.end());
        return true;
    }

    mutable std::mutex mutex;
    std::unique_ptr<recording::EventReader> reader;
    std::optional<recording::EventCleaner> cleaner;
    std::size_t chunk_size;
    std::vector<Event2D> events;
    std::vector<Event2D> pending;
    std::size_t taken = 0;  ///< Number of events at the front of `pending` already returned.
};

py::object openReader(const std::filesystem::path& path, const std::optional<Size>& sensor,
                      const std::optional<std::string>& input_format,
                      const std::optional<std::string>& columns,
                      const std::optional<std::string>& time_unit, std::int64_t chunk_events,
                      bool clean) {
    require(chunk_events >= 1, "chunk_events must be at least 1");
    const auto options = toReadOptions(sensor, input_format, columns, time_unit);
    std::unique_ptr<RecordingReader> reader;
    {
        const py::gil_scoped_release release;
        reader = std::make_unique<RecordingReader>(path, options,
                                                   static_cast<std::size_t>(chunk_events), clean);
    }
    return toPython(std::move(reader));
}

py::array next(RecordingReader& self) {
    std::vector<Event2D> events;
    {
        const py::gil_scoped_release release;
        events = self.next();
    }
    if (events.empty()) {
        throw py::stop_iteration();
    }
    return toArray(events);
}

std::optional<Size> sensorOf(const RecordingReader& self) {
    const auto size = self.sensorSize();
    return size ? std::optional<Size>({size->width, size->height}) : std::nullopt;
}

}  // namespace

void bindRecordings(py::module_& module) {
    translateRecordingErrors();
    py::class_<RecordingReader> type(module, "RecordingReader", kDoc);
    type.def("__iter__", [](const py::object& self) { return self; });
    type.def("__next__", &next);
    type.def_property_readonly(
        "format", [](const RecordingReader& self) { return self.format(); },
        (inWords(recording::readableFormats()) + ".").c_str());
    type.def_property_readonly("sensor", &sensorOf, "Width and height in pixels, None if unknown.");
    const auto count = [&](const char* name, auto member, const char* doc) {
        type.def_property_readonly(
            name,
            py::cpp_function([member](const RecordingReader& self) { return (self.*member)(); },
                             py::call_guard<py::gil_scoped_release>()),
            doc);
    };
    count("dropped", &RecordingReader::dropped,
          "Number of events so far that were ignored because they were off the sensor.");
    count("clamped", &RecordingReader::clamped,
          "Number of events so far whose time was corrected.");
    count("skipped_words", &RecordingReader::skippedWords,
          "Number of words of unknown type so far, in EVT2 and EVT3 recordings.");
    module.def("open_recording", &openReader, py::arg("path"), py::kw_only(), py::arg("sensor"),
               py::arg("input_format"), py::arg("columns"), py::arg("time_unit"),
               py::arg("chunk_events"), py::arg("clean"),
               "open_recording(path, *, sensor, input_format, columns, time_unit, chunk_events, "
               "clean)\n\nSee `kelvora.read`.");
}

}  // namespace kelvora::python
