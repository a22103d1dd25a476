// SPDX-License-Identifier: MIT
#include "support/recordings.hpp"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "kelvora/recording/event_reader.hpp"

namespace kelvora::benchmarks {

std::vector<Event2D> recordedEvents(const std::string& name, std::size_t count) {
    const char* const directory = std::getenv("KELVORA_RECORDINGS");
    const auto path =
        std::filesystem::path(directory != nullptr ? directory : ".") / (name + ".events.bin");
    std::vector<Event2D> events;
    if (!std::filesystem::exists(path)) {
        return events;
    }
    const auto reader = recording::openRecording(path);
    std::vector<Event2D> chunk;
    while (events.size() < count && reader->read(chunk)) {
        const std::size_t wanted = std::min(chunk.size(), count - events.size());
        events.insert(events.end(), chunk.begin(),
                      chunk.begin() + static_cast<std::ptrdiff_t>(wanted));
    }
    for (std::size_t i = events.size(); i-- > 0;) {
        events[i].timestamp -= events[0].timestamp;
    }
    return events;
}

}  // namespace kelvora::benchmarks
