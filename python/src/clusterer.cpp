// SPDX-License-Identifier: MIT
#include "clusterer.hpp"

#include <stdexcept>
#include <utility>

namespace kelvora::python {

Clusterer::Clusterer(EventIntake intake_, MakeEngine make_engine_)
    : intake(std::move(intake_)), make_engine(std::move(make_engine_)), engine(make_engine()) {}

void Clusterer::process(const EventColumns& columns) {
    const std::lock_guard<std::mutex> lock(mutex);
    intake.take(columns, [this](const Event2D* events, std::size_t count) {
        engine->process(events, count);
    });
}

std::vector<ClusterRow> Clusterer::generate(std::int64_t timestamp) {
    require(timestamp >= 0, "timestamp must not be negative");
    const std::lock_guard<std::mutex> lock(mutex);
    generated_origin = intake.origin().value_or(0);
    intake.endSlice();
    engine->generate(static_cast<std::uint64_t>(timestamp), clusters);
    std::vector<ClusterRow> rows;
    rows.reserve(clusters.size());
    for (const ClusterGeometry& cluster : clusters) {
        rows.push_back(toRow(cluster, generated_origin));
    }
    return rows;
}

void Clusterer::reset() {
    const std::lock_guard<std::mutex> lock(mutex);
    engine = make_engine();
    intake.reset();
    generated_origin = 0;
}

std::uint64_t Clusterer::dropped() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return intake.dropped();
}

std::uint64_t Clusterer::clamped() const {
    const std::lock_guard<std::mutex> lock(mutex);
    return intake.clamped();
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

Polarity toPolarity(const std::string& word) {
    require(word == "all" || word == "on" || word == "off",
            "polarity must be 'all', 'on' or 'off', or 'separate' for the grid");
    if (word == "all") {
        return Polarity::All;
    }
    return word == "on" ? Polarity::On : Polarity::Off;
}

}  // namespace kelvora::python
