// SPDX-License-Identifier: MIT
#include "clusterer.hpp"

#include <utility>

#include "sessions/methods.hpp"
#include "settings.hpp"

namespace kelvora::python {

namespace {

/// In three dimensions, times within a slice are 32-bit microseconds.
std::uint64_t longestSlice(const tool::Settings& settings) {
    return tool::methodOf(settings.method).uses(tool::Group::Points) && settings.point.dim == 3
               ? tool::kLongestWindowIn3d.microseconds
               : EventIntake::kNoLongestSlice;
}

}  // namespace

Clusterer::Clusterer(tool::Settings settings_, recording::SensorSize sensor_)
    : settings(std::move(settings_)),
      sensor(sensor_),
      intake(sensor, settings.windows.polarity, longestSlice(settings)),
      session(std::make_unique<tool::Session>(settings, sensor)) {}

void Clusterer::process(const EventColumns& columns) {
    const std::lock_guard<std::mutex> lock(mutex);
    intake.take(columns,
                [this](const Event2D* events, std::size_t count) { session->add(events, count); });
}

std::vector<tool::ClusterRow> Clusterer::generate(std::int64_t timestamp) {
    require(timestamp >= 0, "timestamp must not be negative");
    const std::lock_guard<std::mutex> lock(mutex);
    intake.endSlice();
    return tool::rowsOf(session->finishWindow(static_cast<std::uint64_t>(timestamp)));
}

void Clusterer::reset() {
    const std::lock_guard<std::mutex> lock(mutex);
    session = std::make_unique<tool::Session>(settings, sensor);
    intake.reset();
}

std::uint64_t Clusterer::dropped() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return intake.dropped();
}

std::uint64_t Clusterer::clamped() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return intake.clamped();
}

}  // namespace kelvora::python
