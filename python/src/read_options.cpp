// SPDX-License-Identifier: MIT
#include "read_options.hpp"

#include <fmt/format.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <string>

#include "kelvora/recording/formats.hpp"
#include "settings.hpp"

namespace kelvora::python {

namespace py = pybind11;

namespace {

template <typename Value>
Value parsed(const std::optional<Value>& value, const char* message) {
    require(value.has_value(), message);
    return *value;
}

}  // namespace

void handleSignals() {
    const py::gil_scoped_acquire acquire;
    if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
    }
}

std::string inWords(std::vector<std::string> names) {
    const std::string last = names.back();
    names.pop_back();
    return fmt::format("'{}' or '{}'", fmt::join(names, "', '"), last);
}

recording::ReadOptions toReadOptions(const std::optional<Size>& sensor,
                                     const std::optional<std::string>& input_format,
                                     const std::optional<std::string>& columns,
                                     const std::optional<std::string>& time_unit) {
    recording::ReadOptions options;
    options.on_signal = handleSignals;
    if (sensor) {
        options.sensor_size = toSensorSize(sensor->first, sensor->second);
    }
    if (input_format) {
        const std::vector<std::string> names = recording::readableFormats();
        require(std::find(names.begin(), names.end(), *input_format) != names.end(),
                ("input_format must be " + inWords(names)).c_str());
        options.format = input_format;
    }
    if (columns) {
        options.text.columns = parsed(recording::textColumnsFromString(*columns),
                                      "columns must be an order of t, x, y and p such as 'xypt'");
    }
    if (time_unit) {
        options.text.time_unit = parsed(recording::timeUnitFromString(*time_unit),
                                        "time_unit must be 's', 'ms', 'us' or 'ns'");
    }
    return options;
}

}  // namespace kelvora::python
