// SPDX-License-Identifier: MIT
#include "event_records.hpp"

#include <pybind11/pybind11.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

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
    // Signed, because NumPy converts to floating point when it mixes unsigned and signed times.
    add("t", "i8", offsetof(Event2D, timestamp));
    return {names, formats, offsets, sizeof(Event2D)};
}

py::array toArray(const std::vector<Event2D>& events) {
    py::array array(eventDtype(), events.size());
    // Copy field by field, because the padding of an event is undefined. Equal events get equal
    // bytes, so that files and checksums are the same in every run.
    std::array<char, sizeof(Event2D)> record{};
    auto* bytes = static_cast<char*>(array.mutable_data());
    const auto put = [&record](const auto& value, std::size_t offset) {
        std::memcpy(record.data() + offset, &value, sizeof(value));
    };
    for (const Event2D& event : events) {
        put(event.x, offsetof(Event2D, x));
        put(event.y, offsetof(Event2D, y));
        put(event.polarity, offsetof(Event2D, polarity));
        put(event.timestamp, offsetof(Event2D, timestamp));
        bytes = std::copy(record.begin(), record.end(), bytes);
    }
    return array;
}

}  // namespace kelvora::python
