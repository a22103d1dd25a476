// SPDX-License-Identifier: MIT
#include "settings.hpp"

#include <fmt/format.h>
#include <pybind11/stl.h>

#include <cstddef>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "bindings.hpp"
#include "sessions/methods.hpp"
#include "sessions/parameter_error.hpp"
#include "sessions/suggestion.hpp"

namespace kelvora::python {

namespace py = pybind11;

using tool::Parameter;
using tool::ParameterError;

const tool::Wording kKeywordWording = {
    [](const Parameter& parameter) { return std::string(parameter.keyword); },
    [](const Parameter& parameter, const std::string& value) {
        return value.empty() ? std::string(parameter.keyword)
                             : fmt::format("{} {}", parameter.keyword, value);
    }};

namespace {

[[noreturn]] void refuse(const ParameterError& error) {
    if (error.kind == ParameterError::Kind::NotUsed) {
        throw py::type_error(fmt::format("{} is not a parameter of the method '{}'",
                                         error.parameter->keyword, error.value));
    }
    throw std::invalid_argument(
        fmt::format("{} {}", error.parameter->keyword, tool::describe(error, kKeywordWording)));
}

const Parameter& parameterOf(const std::string& keyword) {
    const Parameter* const parameter = tool::findParameter(keyword);
    if (parameter == nullptr) {
        std::vector<std::string> keywords;
        for (const Parameter& one : tool::parameterTable()) {
            keywords.emplace_back(one.keyword);
        }
        throw py::type_error(fmt::format("there is no parameter {}{}", keyword,
                                         tool::suggestionFor(keyword, keywords)));
    }
    return *parameter;
}

std::string textOf(const py::handle& value) {
    return py::repr(value);
}

bool toFlag(const Parameter& parameter, const py::handle& value) {
    const py::object numpy_bool = py::module_::import("numpy").attr("bool_");
    if (!py::isinstance<py::bool_>(value) && !py::isinstance(value, numpy_bool)) {
        throw py::type_error(
            fmt::format("{} must be True or False, not {}", parameter.keyword, textOf(value)));
    }
    return value.cast<bool>();
}

/// The value of an integer of any type. Larger ones than settings hold become infinite.
tool::Value toNumber(const py::handle& integer) {
    const auto whole = py::reinterpret_steal<py::object>(PyNumber_Index(integer.ptr()));
    if (!whole) {
        throw py::error_already_set();
    }
    int overflow = 0;
    const std::int64_t number = PyLong_AsLongLongAndOverflow(whole.ptr(), &overflow);
    if (overflow == 0) {
        return number;
    }
    const double real = PyLong_AsDouble(whole.ptr());
    if (PyErr_Occurred() == nullptr) {
        return real;
    }
    PyErr_Clear();
    return overflow * std::numeric_limits<double>::infinity();
}

tool::Value toValue(const Parameter& parameter, const py::handle& value) {
    if (parameter.isFlag()) {
        return toFlag(parameter, value);
    }
    if (py::isinstance<py::str>(value)) {
        return toString(parameter.keyword, value);
    }
    if (PyIndex_Check(value.ptr()) != 0) {
        return toNumber(value);
    }
    if (parameter.isDuration()) {
        throw py::type_error(
            fmt::format("{} must be an integer, not {}", parameter.keyword, textOf(value)));
    }
    if (PyNumber_Check(value.ptr()) == 0) {
        throw py::type_error(fmt::format("{} must not be {}", parameter.keyword, textOf(value)));
    }
    return py::float_(py::reinterpret_borrow<py::object>(value)).cast<double>();
}

/// Clusterers get windows, and tracks, from their callers.
bool isOfClusterers(const Parameter& parameter) {
    return parameter.group == tool::Group::General ? std::string(parameter.keyword) == "polarity"
                                                   : parameter.group != tool::Group::Tracking;
}

/// The default of a parameter in Python.
struct DefaultValue {
    template <typename T>
    py::object operator()(const T* field) const {
        return py::cast(*field);
    }
    template <typename T>
    py::object operator()(const std::optional<T>*) const {
        return py::none();
    }
    py::object operator()(const unsigned long long* field) const {
        const bool is_none = *field == 0 || *field == tool::PointSettings::kUnbounded;
        return is_none ? py::object(py::none()) : py::cast(*field);
    }
    py::object operator()(const tool::Duration* field) const {
        return py::cast(field->microseconds);
    }
    py::object operator()(const tool::Polarity*) const { return py::none(); }
    py::object operator()(const tool::Precision*) const { return py::none(); }
};

py::dict describeParameter(const Parameter& parameter) {
    tool::Settings settings;
    py::dict row;
    row["group"] = tool::titleOf(parameter.group);
    row["name"] = parameter.keyword;
    row["option"] = parameter.option;
    row["unit"] = parameter.unit;
    row["words"] = py::cast(parameter.words());
    row["default"] = parameter.words().empty()
                         ? std::visit(DefaultValue(), parameter.field(settings))
                         : py::cast(parameter.defaultText());
    row["default_text"] = parameter.defaultText();
    row["description"] = parameter.sentence;
    return row;
}

}  // namespace

void setParameters(tool::SettingsBuilder& builder, const py::dict& keywords) {
    for (const auto& [key, value] : keywords) {
        const Parameter& parameter = parameterOf(key.cast<std::string>());
        if (value.is_none()) {
            continue;
        }
        try {
            builder.set(parameter, toValue(parameter, value));
        } catch (const ParameterError& error) {
            refuse(error);
        }
    }
}

void checkParameters(const tool::SettingsBuilder& builder) {
    try {
        builder.check();
    } catch (const ParameterError& error) {
        refuse(error);
    }
}

tool::Settings clustererSettings(const std::string& method, const py::dict& keywords) {
    for (const auto& item : keywords) {
        const auto keyword = item.first.cast<std::string>();
        if (!isOfClusterers(parameterOf(keyword))) {
            throw py::type_error("a clusterer has no parameter " + keyword);
        }
    }
    tool::SettingsBuilder builder;
    builder.settings.method = method;
    setParameters(builder, keywords);
    checkParameters(builder);
    return builder.settings;
}

std::string toString(const std::string& keyword, const py::handle& value) {
    if (!py::isinstance<py::str>(value)) {
        throw py::type_error(fmt::format("{} must be a string, not {}", keyword, textOf(value)));
    }
    Py_ssize_t size = 0;
    const char* const text = PyUnicode_AsUTF8AndSize(value.ptr(), &size);
    if (text == nullptr) {
        throw py::error_already_set();
    }
    return {text, static_cast<std::size_t>(size)};
}

void require(bool condition, const char* message) {
    if (!condition) {
        throw std::invalid_argument(message);
    }
}

recording::SensorSize toSensorSize(std::int64_t width, std::int64_t height) {
    require(width >= 1 && width <= recording::kLargestSensorSide && height >= 1 &&
                height <= recording::kLargestSensorSide,
            "width and height of the sensor must be from 1 to 65536 pixels");
    return {static_cast<int>(width), static_cast<int>(height)};
}

void bindParameters(py::module_& module) {
    module.def(
        "parameters",
        [] {
            py::list rows;
            for (const Parameter& parameter : tool::parameterTable()) {
                rows.append(describeParameter(parameter));
            }
            return rows;
        },
        "parameters()\n\nThe parameters of all methods: group, name, option of the command-line "
        "tool, unit, words, default, default of the option as text, and description.");
}

}  // namespace kelvora::python
