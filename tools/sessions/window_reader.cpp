// SPDX-License-Identifier: MIT
#include "sessions/window_reader.hpp"

#include <utility>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::tool {

WindowReader::WindowReader(std::unique_ptr<recording::EventReader> reader_,
                           recording::SensorSize sensor, const WindowSettings& options)
    : reader(std::move(reader_)),
      cleaner(sensor),
      range(options.from, options.to),
      polarity(options.polarity),
      window_slicer(options.window.microseconds) {}

bool WindowReader::read() {
    try {
        if (!range.isOver() && reader->read(events)) {
            cleaner.clean(events);
            range.keepInside(events);
            keepPolarity(events, polarity);
            window_slicer.add(events);
            return true;
        }
    } catch (const recording::RecordingError&) {
        reading_defect = std::current_exception();
    }
    window_slicer.finish();
    return false;
}

std::string WindowReader::remark() const {
    if (range.isAhead()) {
        return "the recording ends before the requested time range";
    }
    return range.isOpen() && !reading_defect ? "the recording ends within the requested time range"
                                             : "";
}

}  // namespace kelvora::tool
