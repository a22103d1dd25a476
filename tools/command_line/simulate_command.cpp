// SPDX-License-Identifier: MIT
#include "command_line/simulate_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "command_line/file_check.hpp"
#include "command_line/format_option.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/progress_line.hpp"
#include "command_line/quantities.hpp"
#include "command_line/write_options.hpp"
#include "kelvora/recording/event_writer.hpp"
#include "kelvora/recording/formats.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "recording/output_file.hpp"
#include "simulation/event_simulator.hpp"
#include "simulation/ground_truth.hpp"

namespace kelvora::tool {

namespace {

using simulation::Limits;
using simulation::SceneOptions;

template <typename T>
std::string textOf(const char* unit, T value) {
    return fmt::format("{} [{}]", unit, value);
}

[[noreturn]] void refuse(const std::string& name, const std::string& range,
                         const std::string& value) {
    throw CLI::ValidationError(name, fmt::format("must be from {}, not {}", range, value));
}

/// Adds an option for a number of the scene.
template <typename T, typename Field>
void addNumber(CLI::App& command, const std::string& name, Field& field, Limits<T> limits,
               const std::string& text, const std::string& description) {
    const std::string range = fmt::format("{} to {}", limits.smallest, limits.largest);
    const auto take = [name, range, limits, &field](T number) {
        if (!limits.contain(number)) {
            refuse(name, range, fmt::format("{}", number));
        }
        field = number;
    };
    command.add_option_function<T>(name, take, description + ", " + range)
        ->option_text(text)
        ->group("Scene");
}

/// Adds an option for a time.
void addTime(CLI::App& command, const char* name, std::uint64_t& microseconds,
             Limits<std::uint64_t> limits, const std::string& description) {
    const std::string range =
        toString(Duration{limits.smallest}) + " to " + toString(Duration{limits.largest});
    const auto take = [name, range, limits, &microseconds](Duration time) {
        if (!limits.contain(time.microseconds)) {
            refuse(name, range, toString(time));
        }
        microseconds = time.microseconds;
    };
    command.add_option_function<Duration>(name, take, description + ", " + range)
        ->option_text(textOf("TIME", toString(Duration{microseconds})));
}

/// Adds the option for the size of the sensor.
void addSensor(CLI::App& command, SceneOptions& scene) {
    const Limits<int> limits = SceneOptions::kSides;
    const std::string range = fmt::format("{0}x{0} to {1}x{1}", limits.smallest, limits.largest);
    const auto take = [range, limits, &scene](recording::SensorSize size) {
        if (!limits.contain(size.width) || !limits.contain(size.height)) {
            refuse("--sensor", range, fmt::format("{}x{}", size.width, size.height));
        }
        scene.width = size.width;
        scene.height = size.height;
    };
    command
        .add_option_function<recording::SensorSize>("--sensor", take,
                                                    "Size of the sensor, pixels, " + range)
        ->option_text(fmt::format("WIDTHxHEIGHT [{}x{}]", scene.width, scene.height));
}

/// Writes the true positions of the objects, if requested.
class TruthWriter {
public:
    TruthWriter(const std::filesystem::path& path, const recording::WriteOptions& options) {
        if (!path.empty()) {
            file.emplace(path, options);
            file->writeHeader(simulation::groundTruthCsvHeader() + '\n');
        }
    }

    void write(const std::vector<simulation::GroundTruth>& truth) {
        if (!file) {
            return;
        }
        std::string rows;
        for (const simulation::GroundTruth& row : truth) {
            rows += simulation::toCsv(row) + '\n';
        }
        file->write(rows);
    }

    void close() {
        if (file) {
            file->close();
        }
    }

private:
    std::optional<recording::OutputFile> file;
};

}  // namespace

SimulateCommand::SimulateCommand(CLI::App& program)
    : Command(program, "simulate", "Simulate a recording of a scene with known objects") {
    declareOutput();
    declareScene();
    command->parse_complete_callback([this] { checkOptions(); });
}

void SimulateCommand::declareOutput() {
    command->add_option("-o,--output", output, "File for the events")
        ->required()
        ->option_text("FILE REQUIRED");
    addFormatOption(*command, "--format", "Format of the events [from the file name]",
                    recording::writableFormats(), format);
    command->add_option("--truth", truth, "File for the true box of each object (CSV)")
        ->option_text("FILE");
    addTime(*command, "--truth-interval", scene.truth_interval_us, SceneOptions::kTruthIntervals,
            "Time between two rows of the same object, with unit");
    declareOptions(*command, write);
}

void SimulateCommand::declareScene() {
    addSensor(*command, scene);
    addTime(*command, "--duration", scene.duration_us, SceneOptions::kDurations,
            "Length of the recording, with unit");
    command
        ->add_option("--seed", scene.seed,
                     "Seed of the random numbers; the same seed gives the same events")
        ->option_text(fmt::format("NUMBER [{}]", scene.seed));
    const auto addObjects = [this](const char* noun, std::optional<int>& count, int usual) {
        addNumber(*command, std::string("--") + noun, count, SceneOptions::kObjects,
                  textOf("NUMBER", usual), std::string("Number of ") + noun);
    };
    addObjects("discs", scene.discs, SceneOptions::kUsualDiscs);
    addObjects("bars", scene.bars, SceneOptions::kUsualBars);
    addObjects("polygons", scene.polygons, SceneOptions::kUsualPolygons);
    const auto add = [this](const char* name, auto& value, auto limits, const char* unit,
                            const char* description) {
        addNumber(*command, name, value, limits, textOf(unit, value), description);
    };
    add("--lights", scene.lights, SceneOptions::kObjects, "NUMBER", "Number of flickering lights");
    add("--light-frequency", scene.light_frequency_hz, SceneOptions::kLightFrequencies, "HZ",
        "Periods of each light per second");
    add("--noise-rate", scene.noise_rate_hz, SceneOptions::kNoiseRates, "HZ",
        "Background noise, events per pixel and second");
    add("--hot-pixels", scene.hot_pixels, SceneOptions::kHotPixels, "NUMBER",
        "Number of hot pixels, which report events all the time");
    add("--hot-pixel-rate", scene.hot_pixel_rate_hz, SceneOptions::kHotPixelRates, "HZ",
        "Events per hot pixel and second");
    add("--contrast-threshold", scene.contrast_threshold, SceneOptions::kContrastThresholds,
        "CHANGE", "Change of the logarithm of the brightness that causes an event");
    add("--threshold-spread", scene.threshold_spread, SceneOptions::kThresholdSpreads, "SHARE",
        "Relative standard deviation of the threshold among pixels");
}

void SimulateCommand::checkOptions() const {
    if (scene.hot_pixels > scene.width * scene.height) {
        throw CLI::ValidationError(
            "--hot-pixels",
            fmt::format("must be at most the number of pixels, {}", scene.width * scene.height));
    }
}

int SimulateCommand::run() const {
    checkFiles({{}, {{"--output", output}, {"--truth", truth}}, {}});
    simulation::EventSimulator simulator(scene);
    const auto writer = recording::createRecording(
        output, format ? *format : recording::formatFromExtension(output),
        {scene.width, scene.height}, write);
    TruthWriter truth_writer(truth, write);
    ProgressLine progress(output.string(), true);

    std::vector<Event2D> events;
    std::vector<simulation::GroundTruth> rows;
    std::uint64_t simulated_us = 0;
    while (!isInterrupted() && simulator.step(events, rows)) {
        writer->write(events);
        truth_writer.write(rows);
        events.clear();
        rows.clear();
        simulated_us += scene.truth_interval_us;
        progress.update(simulated_us, scene.duration_us);
    }
    throwIfTerminated();
    writer->close();
    truth_writer.close();
    return exitStatus();
}

}  // namespace kelvora::tool
