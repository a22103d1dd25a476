// SPDX-License-Identifier: MIT
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <pybind11/stl/filesystem.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bindings.hpp"
#include "event_array.hpp"
#include "event_loader.hpp"
#include "kelvora/recording/event_writer.hpp"
#include "kelvora/recording/formats.hpp"
#include "read_options.hpp"
#include "settings.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

constexpr recording::SensorSize kAnySensor{recording::kLargestSensorSide,
                                           recording::kLargestSensorSide};
constexpr std::size_t kChunk = 64 * EventLoader::kBatch;

std::string checkedFormat(const std::filesystem::path& path,
                          const std::optional<std::string>& output_format) {
    if (!output_format) {
        return recording::formatFromExtension(path);
    }
    const std::vector<std::string> names = recording::writableFormats();
    require(std::find(names.begin(), names.end(), *output_format) != names.end(),
            ("output_format must be " + inWords(names)).c_str());
    return *output_format;
}

recording::SensorSize checkedSensor(const std::optional<Size>& sensor, const std::string& format) {
    require(
        sensor || format == "records",
        "sensor must be given, because the recording states it, except in the format 'records'");
    return sensor ? toSensorSize(sensor->first, sensor->second) : kAnySensor;
}

/// Passes the events to a function, chunk by chunk.
void forEachChunk(const EventColumns& columns,
                  const std::function<void(const std::vector<Event2D>&)>& use) {
    EventLoader loader(columns, kAnySensor);
    std::vector<Event2D> events;
    for (std::size_t first = 0; first < columns.size; first += kChunk) {
        handleSignals();
        events.resize(std::min(kChunk, columns.size - first));
        for (std::size_t i = 0; i < events.size(); i += EventLoader::kBatch) {
            const std::size_t count = std::min(EventLoader::kBatch, events.size() - i);
            require(loader.load(first + i, count, events.data() + i) == count,
                    "coordinates of events must be from 0 to 65535");
        }
        use(events);
    }
}

void writeRecording(const std::filesystem::path& path, const py::object& events,
                    const std::optional<Size>& sensor,
                    const std::optional<std::string>& output_format, const py::object& time_unit,
                    bool overwrite) {
    const std::string format = checkedFormat(path, output_format);
    const recording::SensorSize size = checkedSensor(sensor, format);
    const EventArray array =
        mapEvents({events, py::none(), py::none(), py::none(), py::none(), time_unit});
    recording::WriteOptions options;
    options.overwrite = overwrite;
    options.on_signal = handleSignals;
    const py::gil_scoped_release release;
    // All events are checked before anything is written.
    forEachChunk(array.columns, [](const std::vector<Event2D>&) {});
    const auto writer = recording::createRecording(path, format, size, options);
    forEachChunk(array.columns, [&](const std::vector<Event2D>& chunk) { writer->write(chunk); });
    writer->close();
}

}  // namespace

void bindWriting(py::module_& module) {
    module.def("write_recording", &writeRecording, py::arg("path"), py::arg("events"),
               py::kw_only(), py::arg("sensor"), py::arg("output_format"), py::arg("time_unit"),
               py::arg("overwrite"),
               "write_recording(path, events, *, sensor, output_format, time_unit, overwrite)\n\n"
               "See `kelvora.write`.");
}

}  // namespace kelvora::python
