// SPDX-License-Identifier: MIT
#include "sessions/window_reader.hpp"

#include <algorithm>
#include <utility>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::tool {

WindowReader::WindowReader(std::unique_ptr<recording::EventReader> reader_,
                           recording::SensorSize sensor_, const WindowSettings& options,
                           InputBounds bounds_)
    : reader(std::move(reader_)),
      sensor(sensor_),
      cleaner(sensor),
      range(options.from, options.to),
      polarity(options.polarity),
      slicer(options.window.microseconds),
      bounds(std::move(bounds_)) {}

void WindowReader::checkSensor() const {
    bounds.checkSensor(sensor, reader->fileSize());
}

bool WindowReader::read() {
    if (slicer.waiting() > mostEvents()) {
        endAtFullWindow(slicer.startOfWaiting());
    }
    try {
        if (!reading_defect && !range.isOver() && reader->read(events)) {
            cleaner.clean(events);
            range.keepInside(events);
            keepPolarity(events, polarity);
            slicer.add(events);
            return true;
        }
    } catch (const recording::RecordingError&) {
        reading_defect = std::current_exception();
    }
    slicer.finish();
    return false;
}

bool WindowReader::next(recording::Window& window) {
    recording::Window complete;
    if (!slicer.next(complete)) {
        return false;
    }
    if (complete.size() > mostEvents()) {
        endAtFullWindow(complete.start_time);
        return false;
    }
    window = complete;
    return true;
}

std::uint64_t WindowReader::mostEvents() const {
    return bounds.windowEvents(std::max(reader->fileSize(), reader->bytesRead()));
}

/// Treats a window with too many events as a defect: it is not returned, nor any later one.
void WindowReader::endAtFullWindow(std::uint64_t start_time) {
    slicer.clear();
    try {
        bounds.refuseWindow(mostEvents(), start_time);
    } catch (const recording::RecordingError&) {
        reading_defect = std::current_exception();
    }
}

std::string WindowReader::remark() const {
    if (range.isAhead()) {
        return "the recording ends before the requested time range";
    }
    return range.isOpen() && !reading_defect ? "the recording ends within the requested time range"
                                             : "";
}

}  // namespace kelvora::tool
