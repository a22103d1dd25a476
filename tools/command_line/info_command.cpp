// SPDX-License-Identifier: MIT
#include "command_line/info_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "command_line/file_check.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/progress_line.hpp"
#include "command_line/standard_streams.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "recording/recording_statistics.hpp"

namespace kelvora::tool {

namespace {

std::string sensorText(const recording::EventReader& reader,
                       const recording::RecordingStatistics& statistics) {
    if (const auto size = reader.sensorSize()) {
        return fmt::format("{} x {} pixels", size->width, size->height);
    }
    return fmt::format("not stated (events up to x {}, y {})", statistics.largestX(),
                       statistics.largestY());
}

std::string offSensorText(const recording::RecordingStatistics& statistics) {
    const auto count = statistics.offSensor();
    return count ? fmt::format("{}", *count)
                 : "unknown (state the size with --sensor WIDTHxHEIGHT)";
}

std::string tableOf(const recording::EventReader& reader,
                    const recording::RecordingStatistics& statistics) {
    std::string table;
    const auto out = std::back_inserter(table);
    fmt::format_to(out, "format         {}\n", reader.format());
    fmt::format_to(out, "sensor         {}\n", sensorText(reader, statistics));
    fmt::format_to(out, "events         {}\n", statistics.events());
    fmt::format_to(out, "first event    {} us\n", statistics.firstTime());
    fmt::format_to(out, "duration       {:.6f} s\n",
                   static_cast<double>(statistics.duration()) * 1e-6);
    fmt::format_to(out, "mean rate      {:.0f} events/s\n", statistics.meanRate());
    fmt::format_to(out, "peak rate      {:.0f} events/s (in 10 ms)\n", statistics.peakRate());
    fmt::format_to(out, "ON events      {:.1f} %\n", 100.0 * statistics.onShare());
    fmt::format_to(out, "out of order   {}\n", statistics.outOfOrder());
    fmt::format_to(out, "off sensor     {}\n", offSensorText(statistics));
    fmt::format_to(out, "skipped words  {}\n", reader.skippedWords());
    return table;
}

std::string jsonOf(const recording::EventReader& reader,
                   const recording::RecordingStatistics& statistics) {
    nlohmann::ordered_json info = {{"format", reader.format()},
                                   {"sensor_width", nullptr},
                                   {"sensor_height", nullptr},
                                   {"largest_x", statistics.largestX()},
                                   {"largest_y", statistics.largestY()},
                                   {"events", statistics.events()},
                                   {"first_time_us", statistics.firstTime()},
                                   {"duration_us", statistics.duration()},
                                   {"mean_rate_hz", statistics.meanRate()},
                                   {"peak_rate_hz", statistics.peakRate()},
                                   {"on_share", statistics.onShare()},
                                   {"out_of_order", statistics.outOfOrder()},
                                   {"off_sensor", nullptr},
                                   {"skipped_words", reader.skippedWords()}};
    if (const auto size = reader.sensorSize()) {
        info["sensor_width"] = size->width;
        info["sensor_height"] = size->height;
    }
    if (const auto count = statistics.offSensor()) {
        info["off_sensor"] = *count;
    }
    return info.dump(2) + '\n';
}

}  // namespace

InfoCommand::InfoCommand(CLI::App& program) : Command(program, "info", "Summarise a recording") {
    declareOptions(*command, recording);
    command->add_flag("--json", as_json, "Print JSON instead of a table");
}

int InfoCommand::run() const {
    checkFiles({{{"the recording", recording.path}}, {}, {}});
    const auto reader = recording::openRecording(recording.path, recording.read);
    recording::RecordingStatistics statistics(reader->sensorSize());
    ProgressLine progress(recording.path.string(), true);
    std::exception_ptr defect;
    try {
        std::vector<Event2D> events;
        while (!isInterrupted() && reader->read(events)) {
            statistics.add(events);
            progress.update(reader->bytesRead(), reader->fileSize());
        }
    } catch (const recording::RecordingError&) {
        defect = std::current_exception();
    } catch (const Interrupted&) {
        // Summarise the events that have arrived.
    }
    progress.clear();
    print((as_json ? jsonOf : tableOf)(*reader, statistics));
    if (defect) {
        std::rethrow_exception(defect);
    }
    return exitStatus();
}

}  // namespace kelvora::tool
