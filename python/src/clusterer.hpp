// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "cluster_rows.hpp"
#include "clusterer_docs.hpp"
#include "event_array.hpp"
#include "event_columns.hpp"
#include "event_intake.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "sessions/cluster_rows.hpp"
#include "sessions/session.hpp"
#include "sessions/settings.hpp"

namespace kelvora::python {

/// Clusters the events that its caller provides, with any method. Several threads may use an
/// object; a mutex serves one at a time.
///
/// Callers must not hold the GIL, because a thread that waits for the mutex could otherwise block
/// the thread that owns it.
class Clusterer {
public:
    Clusterer(tool::Settings settings_, recording::SensorSize sensor_);

    void process(const EventColumns& columns);

    /// \throws std::invalid_argument  for a negative timestamp.
    std::vector<tool::ClusterRow> generate(std::int64_t timestamp);

    void reset();

    std::uint64_t dropped() const;
    std::uint64_t clamped() const;

    /// Number of coordinates of a point.
    std::size_t dim() const { return static_cast<std::size_t>(settings.point.dim); }

    /// Calls a function with the session.
    template <class Read>
    auto read(const Read& read) {
        const std::lock_guard<std::mutex> lock(mutex);
        return read(*session);
    }

private:
    mutable std::mutex mutex;
    tool::Settings settings;
    recording::SensorSize sensor;
    EventIntake intake;
    std::unique_ptr<tool::Session> session;
};

/// Adds the members shared by all clusterers.
template <class ClustererT>
void bindClusterer(pybind11::class_<ClustererT>& type) {
    namespace py = pybind11;
    using ReleaseGil = py::call_guard<py::gil_scoped_release>;
    const auto process = [](ClustererT& self, const py::object& events, const py::object& x,
                            const py::object& y, const py::object& t, const py::object& p,
                            const py::object& time_unit) {
        const EventArray array = mapEvents({events, x, y, t, p, time_unit});
        const py::gil_scoped_release release;
        self.process(array.columns);
    };
    const auto generate = [](ClustererT& self, std::int64_t timestamp) {
        std::vector<tool::ClusterRow> rows;
        {
            const py::gil_scoped_release release;
            rows = self.generate(timestamp);
        }
        return toArray(rows);
    };
    type.def("process", process, py::arg("events") = py::none(), py::kw_only(),
             py::arg("x") = py::none(), py::arg("y") = py::none(), py::arg("t") = py::none(),
             py::arg("p") = py::none(), py::arg("time_unit") = py::none(), kProcessDoc);
    type.def("generate", generate, py::arg("timestamp"), kGenerateDoc);
    type.def("reset", &ClustererT::reset, ReleaseGil(), kResetDoc);
    // pybind11 applies call guards to functions only, not to properties.
    const auto property = [&](const char* name, auto member, const char* doc) {
        type.def_property_readonly(
            name,
            py::cpp_function([member](const ClustererT& self) { return (self.*member)(); },
                             ReleaseGil()),
            doc);
    };
    property("dropped", &ClustererT::dropped, kDroppedDoc);
    property("clamped", &ClustererT::clamped, kClampedDoc);
}

}  // namespace kelvora::python
