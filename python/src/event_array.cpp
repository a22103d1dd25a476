// SPDX-License-Identifier: MIT
#include "event_array.hpp"

#include <fmt/format.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

namespace kelvora::python {

namespace py = pybind11;

namespace {

enum class Role { X, Y, Time, Polarity };

const std::vector<std::string>& namesOf(Role role) {
    static const std::map<Role, std::vector<std::string>> names = {
        {Role::X, {"x"}},
        {Role::Y, {"y"}},
        {Role::Time, {"t", "ts", "timestamp", "time"}},
        {Role::Polarity, {"p", "on", "pol", "polarity"}}};
    return names.at(role);
}

std::string quoted(const std::vector<std::string>& names) {
    return names.empty() ? "none" : fmt::format("'{}'", fmt::join(names, "', '"));
}

std::string typeName(const py::dtype& dtype) {
    return py::str(static_cast<py::object>(dtype));
}

/// The corresponding column type; empty if there is none.
std::optional<Scalar> scalarOf(const py::dtype& dtype) {
    static const std::map<std::pair<char, py::ssize_t>, Scalar> scalars = {
        {{'b', 1}, Scalar::Bool},    {{'i', 1}, Scalar::Int8},    {{'i', 2}, Scalar::Int16},
        {{'i', 4}, Scalar::Int32},   {{'i', 8}, Scalar::Int64},   {{'u', 1}, Scalar::UInt8},
        {{'u', 2}, Scalar::UInt16},  {{'u', 4}, Scalar::UInt32},  {{'u', 8}, Scalar::UInt64},
        {{'f', 4}, Scalar::Float32}, {{'f', 8}, Scalar::Float64},
    };
    const auto found = scalars.find({dtype.kind(), dtype.itemsize()});
    const bool is_native = dtype.attr("isnative").cast<bool>();
    return is_native && found != scalars.end() ? std::optional(found->second) : std::nullopt;
}

void checkKind(const py::dtype& dtype, Role role, const std::string& name) {
    const char kind = dtype.kind();
    const bool is_number = kind == 'i' || kind == 'u' || kind == 'f';
    if (role == Role::Time && kind == 'f' && dtype.itemsize() == 2) {
        throw py::type_error(name + " must not be float16, which is too coarse for times");
    }
    if (is_number || (kind == 'b' && role == Role::Polarity)) {
        return;
    }
    const char* const remedy =
        kind == 'M' || kind == 'm' ? "; convert times to integers, and state their time_unit" : "";
    throw py::type_error(fmt::format("{} must be integers or floating-point numbers{}, not {}{}",
                                     name, role == Role::Polarity ? " or bool" : "",
                                     typeName(dtype), remedy));
}

/// Converts an array to the closest type that columns support.
py::array convert(const py::array& values) {
    const py::dtype dtype = values.dtype();
    const py::object target = dtype.kind() == 'f' && dtype.itemsize() != 4
                                  ? static_cast<py::object>(py::dtype::of<double>())
                                  : static_cast<py::object>(dtype.attr("newbyteorder")("="));
    return values.attr("astype")(target);
}

class EventMapper {
public:
    explicit EventMapper(const EventArguments& arguments_) : arguments(arguments_) {}

    EventArray map() {
        const bool has_arrays = !arguments.x.is_none() || !arguments.y.is_none() ||
                                !arguments.t.is_none() || !arguments.p.is_none();
        if (arguments.events.is_none() == !has_arrays) {
            throw py::type_error("give either events, or all of x, y, t and p");
        }
        if (has_arrays) {
            mapArrays();
        } else {
            mapFields(asArray(arguments.events, "events"));
        }
        found.columns.time_unit = timeUnit();
        return std::move(found);
    }

private:
    void mapArrays() {
        const auto values = [](const py::object& object, const char* name) {
            if (object.is_none()) {
                throw py::type_error(fmt::format("{} is missing: give all of x, y, t and p", name));
            }
            return asArray(object, name);
        };
        const py::array x = values(arguments.x, "x");
        found.columns.size = static_cast<std::size_t>(x.size());
        found.columns.x = column(x, Role::X, "x");
        found.columns.y = column(values(arguments.y, "y"), Role::Y, "y");
        found.columns.time = column(values(arguments.t, "t"), Role::Time, "t");
        found.columns.polarity = column(values(arguments.p, "p"), Role::Polarity, "p");
    }

    void mapFields(const py::array& events) {
        const py::object names_object = events.dtype().attr("names");
        if (names_object.is_none()) {
            throw py::type_error(fmt::format(
                "events must be an array with named fields, not of dtype {}: fields are found by "
                "name, not by position; pass four arrays as x=, y=, t= and p=",
                typeName(events.dtype())));
        }
        if (events.ndim() != 1) {
            throw py::value_error(
                fmt::format("events must be an array of one dimension, not of {}", events.ndim()));
        }
        const auto names = names_object.cast<std::vector<std::string>>();
        found.columns.size = static_cast<std::size_t>(events.size());
        found.columns.x = field(events, names, Role::X);
        found.columns.y = field(events, names, Role::Y);
        found.columns.time = field(events, names, Role::Time);
        found.columns.polarity = field(events, names, Role::Polarity);
    }

    Column field(const py::array& events, const std::vector<std::string>& names, Role role) {
        std::vector<std::string> candidates;
        for (const std::string& name : namesOf(role)) {
            if (std::find(names.begin(), names.end(), name) != names.end()) {
                candidates.push_back(name);
            }
        }
        if (candidates.size() != 1) {
            throw py::value_error(
                fmt::format("events need exactly one field called {}; their fields {} include {}",
                            fmt::join(quotedEach(namesOf(role)), " or "), quoted(names),
                            candidates.empty() ? "none" : quoted(candidates)));
        }
        const std::string& name = candidates.front();
        const py::object values = events.attr("__getitem__")(name);
        return column(py::reinterpret_borrow<py::array>(values), role,
                      fmt::format("field '{}'", name));
    }

    static std::vector<std::string> quotedEach(std::vector<std::string> names) {
        for (std::string& name : names) {
            name = quoted({name});
        }
        return names;
    }

    Column column(const py::array& values, Role role, const std::string& name) {
        checkKind(values.dtype(), role, name);
        if (values.ndim() != 1) {
            throw py::value_error(
                fmt::format("{} must have one number per event: its array has {} "
                            "dimensions",
                            name, values.ndim()));
        }
        if (static_cast<std::size_t>(values.size()) != found.columns.size) {
            throw py::value_error(fmt::format("x has {} elements, but {} has {}",
                                              found.columns.size, name, values.size()));
        }
        const py::array known = scalarOf(values.dtype()) ? values : convert(values);
        found.owners.push_back(known);
        return {static_cast<const char*>(known.data()), known.strides(0),
                scalarOf(known.dtype()).value()};
    }

    recording::TimeUnit timeUnit() const {
        if (arguments.time_unit.is_none()) {
            const bool is_whole = found.owners[2].dtype().kind() != 'f';
            // NumPy converts an empty list to a floating-point array.
            if (!is_whole && found.columns.size > 0) {
                throw py::value_error(
                    "times are floating-point numbers: state their unit, time_unit='s', 'ms', "
                    "'us' or 'ns'");
            }
            return recording::TimeUnit::Microseconds;
        }
        const std::string name = py::str(arguments.time_unit);
        const auto unit = recording::timeUnitFromString(name);
        if (!unit) {
            throw py::value_error(
                fmt::format("time_unit must be 's', 'ms', 'us' or 'ns', not '{}'", name));
        }
        return *unit;
    }

    const EventArguments& arguments;
    EventArray found{};
};

}  // namespace

EventArray mapEvents(const EventArguments& arguments) {
    return EventMapper(arguments).map();
}

py::array asArray(const py::object& object, const std::string& name) {
    const auto numpy = py::module_::import("numpy");
    if (py::isinstance(object, numpy.attr("ma").attr("MaskedArray"))) {
        throw py::type_error(name +
                             " is a masked array: pass only the unmasked elements, as "
                             "array.compressed() or array.data[~array.mask]");
    }
    return numpy.attr("asarray")(object);
}

}  // namespace kelvora::python
