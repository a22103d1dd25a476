// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "cluster_rows.hpp"
#include "clusterer_docs.hpp"
#include "event_array.hpp"
#include "event_columns.hpp"
#include "event_intake.hpp"
#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "kelvora/recording/sensor_size.hpp"

namespace kelvora::python {

/// A generator of any method and type.
class Engine {
public:
    Engine() = default;
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    virtual ~Engine() = default;

    virtual void process(const Event2D* events, std::size_t count) = 0;
    virtual void generate(std::uint64_t timestamp, std::vector<ClusterGeometry>& clusters) = 0;
};

/// Shared part of the clusterers of all methods. Several threads may use an object; a mutex serves
/// one at a time.
///
/// Callers must not hold the GIL, because a thread that waits for the mutex could otherwise block
/// the thread that owns it.
class Clusterer {
public:
    using MakeEngine = std::function<std::unique_ptr<Engine>()>;

    Clusterer(EventIntake intake_, MakeEngine make_engine_);

    void process(const EventColumns& columns);

    /// \throws std::invalid_argument  for a negative timestamp.
    std::vector<ClusterRow> generate(std::int64_t timestamp);

    void reset();

    std::uint64_t dropped() const;
    std::uint64_t clamped() const;

    /// Calls a function with the engine.
    ///
    /// \param read  Called with the engine and the origin of the times of its last clusters,
    ///     microseconds.
    template <class EngineT, class Read>
    auto readEngine(const Read& read) {
        const std::lock_guard<std::mutex> lock(mutex);
        return read(static_cast<EngineT&>(*engine), generated_origin);
    }

private:
    mutable std::mutex mutex;
    EventIntake intake;
    MakeEngine make_engine;
    std::unique_ptr<Engine> engine;
    std::uint64_t generated_origin = 0;
    std::vector<ClusterGeometry> clusters;
};

/// \throws std::invalid_argument  with the message, unless the condition holds.
void require(bool condition, const char* message);

/// \throws std::invalid_argument  if it is not a valid sensor size.
recording::SensorSize toSensorSize(std::int64_t width, std::int64_t height);

/// \throws std::invalid_argument  for any word other than all, on and off.
Polarity toPolarity(const std::string& word);

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
        std::vector<ClusterRow> rows;
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
