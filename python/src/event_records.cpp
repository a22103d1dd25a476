// SPDX-License-Identifier: MIT
#include "event_records.hpp"

#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstddef>

namespace kelvora::python {

namespace py = pybind11;

py::dtype eventDtype() {
    py::list names;
    py::list formats;
    py::list offsets;
    const auto add = [&](const char* name, const char* format, std::size_t offset) {
        names.append(name);
        formats.append(format);
        offsets.append(offset);
    };
    add("x", "u2", offsetof(Event2D, x));
    add("y", "u2", offsetof(Event2D, y));
    add("p", "u1", offsetof(Event2D, polarity));
    // Signed, as NumPy makes floating-point numbers of an unsigned time and a signed one.
    add("t", "i8", offsetof(Event2D, timestamp));
    return {names, formats, offsets, sizeof(Event2D)};
}

py::array toArray(const std::vector<Event2D>& events) {
    py::array array(eventDtype(), events.size());
    const auto* const bytes = reinterpret_cast<const char*>(events.data());
    std::copy_n(bytes, events.size() * sizeof(Event2D), static_cast<char*>(array.mutable_data()));
    return array;
}

}  // namespace kelvora::python
