// SPDX-License-Identifier: MIT
#include "sessions/recording_session.hpp"

#include <utility>

#include "kelvora/recording/recording_error.hpp"
#include "sessions/input_bounds.hpp"

namespace kelvora::tool {

WindowReader openWindows(const std::filesystem::path& path, const recording::ReadOptions& options,
                         const Settings& settings, const Wording& wording) {
    auto reader = recording::openRecording(path, options);
    const auto sensor = reader->sensorSize();
    if (!sensor) {
        throw recording::RecordingError(recording::ErrorKind::NoSensorSize, path.string(),
                                        "does not state the size of its sensor", {},
                                        {"state it with {}", recording::Setting::SensorSize});
    }
    return {std::move(reader), *sensor, settings.windows, InputBounds(path, settings, wording)};
}

Session makeSession(const WindowReader& reader, const Settings& settings) {
    reader.checkSensor();
    return {settings, reader.sensorSize()};
}

std::string remarksOf(const Session& session, const WindowReader& reader) {
    const std::string of_session = session.remark();
    const std::string of_reader = reader.remark();
    const bool are_both = !of_session.empty() && !of_reader.empty();
    return of_session + (are_both ? "; " : "") + of_reader;
}

}  // namespace kelvora::tool
