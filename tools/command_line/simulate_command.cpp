// SPDX-License-Identifier: MIT
#include "command_line/simulate_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "command_line/file_check.hpp"
#include "command_line/format_option.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/progress_line.hpp"
#include "command_line/write_options.hpp"
#include "kelvora/recording/event_writer.hpp"
#include "kelvora/recording/formats.hpp"
#include "recording/output_file.hpp"
#include "simulation/event_simulator.hpp"
#include "simulation/ground_truth.hpp"

namespace kelvora::tool {

namespace {

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
    : command(program.add_subcommand("simulate",
                                     "Simulate a recording of a scene with known objects")) {
    declareOutput();
    declareScene();
}

void SimulateCommand::declareOutput() {
    command->add_option("-o,--output", output, "File for the events")
        ->required()
        ->option_text("FILE REQUIRED");
    addFormatOption(*command, "--format", "Format of the events [from the file name]",
                    recording::writableFormats(), format);
    command->add_option("--truth", truth, "File for the true box of each object (CSV)")
        ->option_text("FILE");
    command
        ->add_option("--truth-interval", truth_interval,
                     "Time between two rows of the same object, with unit")
        ->option_text("TIME [" + toString(truth_interval) + "]");
    declareOptions(*command, write);
}

void SimulateCommand::declareScene() {
    command->add_option("--sensor", sensor, "Size of the sensor, pixels")
        ->option_text("WIDTHxHEIGHT [640x480]");
    command->add_option("--duration", duration, "Length of the recording, with unit")
        ->option_text("TIME [" + toString(duration) + "]");
    command
        ->add_option("--seed", scene.seed,
                     "Seed of the random numbers; the same seed gives the same events")
        ->capture_default_str();
    const char* const group = "Scene";
    command->add_option("--discs", scene.discs, "Number of discs [3]")->group(group);
    command->add_option("--bars", scene.bars, "Number of bars [2]")->group(group);
    command->add_option("--polygons", scene.polygons, "Number of polygons [3]")->group(group);
    const auto add = [this, group](const char* name, auto& value, const char* description) {
        command->add_option(name, value, description)->capture_default_str()->group(group);
    };
    add("--lights", scene.lights, "Number of flickering lights");
    add("--light-frequency", scene.light_frequency_hz, "Periods of each light per second");
    add("--noise-rate", scene.noise_rate_hz, "Background noise, events per pixel and second");
    add("--hot-pixels", scene.hot_pixels, "Number of hot pixels, which report events all the time");
    add("--hot-pixel-rate", scene.hot_pixel_rate_hz, "Events per hot pixel and second");
    add("--contrast-threshold", scene.contrast_threshold,
        "Change of the logarithm of the brightness that causes an event");
    add("--threshold-spread", scene.threshold_spread,
        "Relative standard deviation of the threshold among pixels");
}

int SimulateCommand::run() {
    checkFiles({{}, {{"--output", output}, {"--truth", truth}}, {}});
    scene.width = sensor.width;
    scene.height = sensor.height;
    scene.duration_us = duration.microseconds;
    scene.truth_interval_us = truth_interval.microseconds;
    simulation::EventSimulator simulator(scene);
    const auto writer = recording::createRecording(
        output, format ? *format : recording::formatFromExtension(output), sensor, write);
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
