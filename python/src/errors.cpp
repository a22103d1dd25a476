// SPDX-License-Identifier: MIT
#include "errors.hpp"

#include <exception>
#include <string>
#include <string_view>
#include <utility>

namespace kelvora::python {

namespace py = pybind11;

namespace {

// The keyword for a setting, as remedies mention it.
std::string_view keywordOf(recording::Setting setting) {
    using recording::Setting;
    switch (setting) {
        case Setting::Format:
            return "input_format";
        case Setting::SensorSize:
            return "sensor=(WIDTH, HEIGHT)";
        case Setting::Columns:
            return "columns";
        case Setting::TimeUnit:
            return "time_unit";
        case Setting::None:
            break;
    }
    return "";
}

// File names need not be valid Unicode.
py::object decoded(const std::string& text) {
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeFSDefaultAndSize(text.data(), static_cast<py::ssize_t>(text.size())));
}

}  // namespace

py::object toPython(const recording::RecordingError& error) {
    const py::object type = py::module_::import("kelvora._errors").attr("RecordingError");
    return type(decoded(error.file()), decoded(error.problem()),
                decoded(recording::toString(error.place())), decoded(error.remedy(keywordOf)));
}

void translateRecordingErrors() {
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            std::rethrow_exception(std::move(thrown));
        } catch (const recording::RecordingError& error) {
            const py::object exception = toPython(error);
            PyErr_SetObject(py::type::of(exception).ptr(), exception.ptr());
        }
    });
}

}  // namespace kelvora::python
