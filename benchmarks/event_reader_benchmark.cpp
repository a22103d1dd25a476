// SPDX-License-Identifier: MIT
// How fast recordings of each format are read, the file being in the page cache: `openRecording` to
// the last event.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/event_writer.hpp"

namespace {

using kelvora::Event2D;
using kelvora::recording::SensorSize;

constexpr SensorSize kSensorSize{1280, 720};
constexpr std::size_t kEventCount = 2'000'000;

// Single events all over the sensor: nothing that EVT3 could pack.
std::vector<Event2D> scatteredEvents() {
    std::mt19937_64 random(1);
    std::vector<Event2D> events;
    std::uint64_t time = 0;
    while (events.size() < kEventCount) {
        time += random() % 3;
        events.emplace_back(static_cast<unsigned short>(random() % kSensorSize.width),
                            static_cast<unsigned short>(random() % kSensorSize.height),
                            static_cast<unsigned char>(random() % 2), time);
    }
    return events;
}

// Rows read out at once, as edges make them: runs of up to 40 neighbouring pixels, which EVT3
// packs.
std::vector<Event2D> rowsOfEvents() {
    std::mt19937_64 random(2);
    std::vector<Event2D> events;
    std::uint64_t time = 0;
    while (events.size() < kEventCount) {
        time += random() % 2;
        const auto y = static_cast<unsigned short>(random() % kSensorSize.height);
        const auto polarity = static_cast<unsigned char>(random() % 2);
        const auto first = static_cast<unsigned>(random() % (kSensorSize.width - 40));
        const auto last = first + static_cast<unsigned>(random() % 40);
        for (unsigned x = first; x <= last; ++x) {
            events.emplace_back(static_cast<unsigned short>(x), y, polarity, time);
        }
    }
    return events;
}

class TemporaryRecording {
public:
    TemporaryRecording(const std::string& format, const std::vector<Event2D>& events)
        : path(std::filesystem::temp_directory_path() /
               ("kelvora_event_reader_benchmark_" + std::to_string(::getpid()))) {
        const auto writer = createRecording(path, format, kSensorSize);
        writer->write(events);
        writer->close();
    }
    ~TemporaryRecording() { std::filesystem::remove(path); }
    TemporaryRecording(const TemporaryRecording&) = delete;
    TemporaryRecording& operator=(const TemporaryRecording&) = delete;

    const std::filesystem::path path;
};

void readRecording(benchmark::State& state, const std::string& format,
                   const std::vector<Event2D>& recorded) {
    const TemporaryRecording recording(format, recorded);
    std::vector<Event2D> events;
    std::size_t count = 0;
    for ([[maybe_unused]] auto iteration : state) {
        const auto reader = kelvora::recording::openRecording(recording.path);
        while (reader->read(events)) {
            benchmark::DoNotOptimize(events.data());
            count += events.size();
        }
    }
    if (count != recorded.size() * static_cast<std::size_t>(state.iterations())) {
        state.SkipWithError("events were lost");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(count));
    const auto file_size = static_cast<std::int64_t>(std::filesystem::file_size(recording.path));
    state.SetBytesProcessed(file_size * static_cast<std::int64_t>(state.iterations()));
}

void readScatteredEvents(benchmark::State& state, const std::string& format) {
    readRecording(state, format, scatteredEvents());
}

void readRowsOfEvents(benchmark::State& state, const std::string& format) {
    readRecording(state, format, rowsOfEvents());
}

BENCHMARK_CAPTURE(readScatteredEvents, records, "records")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readScatteredEvents, text, "text")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readScatteredEvents, evt2, "evt2")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readScatteredEvents, evt3, "evt3")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readRowsOfEvents, evt3, "evt3")->Unit(benchmark::kMillisecond);

}  // namespace
