// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "failures/failure_checks.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/event_writer.hpp"
#include "kelvora/recording/formats.hpp"
#include "simulation/event_simulator.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::test {
namespace {

using failures::Kind;
using Numbers = std::vector<std::uint64_t>;

constexpr recording::SensorSize kSensor{100, 80};
constexpr const char* kOldContent = "the recording of last week";

/// More events than a reader returns at once.
std::vector<Event2D> someEvents() {
    Random random(3);
    std::vector<Event2D> events = randomEvents(random, kSensor.width, kSensor.height, 40'000);
    for (std::size_t i = 0; i < events.size(); ++i) {
        events[i].timestamp = 1000 + 3 * i;
        events[i].polarity &= 1;
    }
    return events;
}

void append(Numbers& numbers, const std::vector<Event2D>& events) {
    for (const Event2D& event : events) {
        numbers.insert(numbers.end(), {event.x, event.y, event.polarity, event.timestamp});
    }
}

void writeRecording(const std::filesystem::path& path, const std::string& format) {
    static const std::vector<Event2D> events = someEvents();
    const auto writer = recording::createRecording(path, format, kSensor);
    writer->write(events);
    writer->close();
}

/// A recording of each format.
class RecordingsWithFailures : public testing::TestWithParam<std::string> {
protected:
    std::filesystem::path written() const {
        const std::filesystem::path path = directory.file("written");
        writeRecording(path, GetParam());
        return path;
    }

    recording::ReadOptions options() const {
        recording::ReadOptions read;
        read.sensor_size = kSensor;
        return read;
    }

    TemporaryDirectory directory;
};

INSTANTIATE_TEST_SUITE_P(OfFormat, RecordingsWithFailures,
                         testing::ValuesIn(recording::writableFormats()),
                         [](const auto& format) { return format.param; });

TEST_P(RecordingsWithFailures, AreReadFromTheBeginningAgain) {
    const auto path = written();
    const auto read = [&](auto& /*nothing*/) {
        const auto reader = recording::openRecording(path, options());
        Numbers numbers;
        std::vector<Event2D> events;
        while (reader->read(events)) {
            append(numbers, events);
        }
        return numbers;
    };
    expectRightResultsAfterFailures(UseOfAnObject{kNoObject, read, kNothing},
                                    {Kind::Allocation, Kind::Open, Kind::Read});
}

TEST_P(RecordingsWithFailures, OfMemoryAreReadOnWithoutALossOfEvents) {
    struct Reading {
        std::unique_ptr<recording::EventReader> reader;
        std::vector<Event2D> events;
        Numbers numbers;
    };
    const auto path = written();
    const auto make = [&] {
        auto reading = std::make_unique<Reading>();
        reading->reader = recording::openRecording(path, options());
        reading->numbers.reserve(4 * someEvents().size());
        return reading;
    };
    const auto read = [](auto& reading) {
        while (reading->reader->read(reading->events)) {
            append(reading->numbers, reading->events);
        }
        return reading->numbers;
    };
    expectRightResultsAfterFailures(UseOfAnObject{make, read, kNothing}, {Kind::Allocation});
}

TEST_P(RecordingsWithFailures, ReplaceAFileOnlyWhenTheyAreComplete) {
    const std::string right = contentOf(written());
    const auto path = directory.file("replaced");
    const auto make = [&] {
        directory.file("replaced", kOldContent);
        return kNoObject();
    };
    const auto write = [&](auto& /*nothing*/) {
        writeRecording(path, GetParam());
        return std::filesystem::file_size(path);
    };
    const auto check = [&](auto& /*nothing*/) {
        const std::string content = contentOf(path);
        EXPECT_TRUE(content == kOldContent || content == right) << content.size() << " bytes";
    };
    expectRightResultsAfterFailures(
        UseOfAnObject{make, write, check},
        {Kind::Allocation, Kind::Open, Kind::Write, Kind::Sync, Kind::Rename});
}

TEST(ASimulation, GivesTheSameEventsAgainAfterAFailure) {
    const auto simulate = [](auto& /*nothing*/) {
        simulation::SceneOptions options;
        options.width = 32;
        options.height = 24;
        options.duration_us = 20'000;
        simulation::EventSimulator simulator(options);
        std::vector<Event2D> events;
        std::vector<simulation::GroundTruth> truth;
        while (simulator.step(events, truth)) {
        }
        Numbers numbers = {truth.size()};
        append(numbers, events);
        return numbers;
    };
    expectRightResultsAfterFailures(UseOfAnObject{kNoObject, simulate, kNothing},
                                    {Kind::Allocation});
}

}  // namespace
}  // namespace kelvora::test
