// SPDX-License-Identifier: MIT
#include "command_line/recording_options.hpp"

#include <CLI/CLI.hpp>

#include "command_line/format_option.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/quantities.hpp"
#include "kelvora/recording/formats.hpp"

namespace kelvora::tool {

namespace {

void setColumns(RecordingOptions& options, const std::string& text) {
    options.read.text.columns = recording::textColumnsFromString(text);
    if (!options.read.text.columns) {
        throw CLI::ValidationError("--columns", "'" + text +
                                                    "' is not an order of t, x, y and p such as "
                                                    "x,y,p,t");
    }
}

}  // namespace

void declareOptions(CLI::App& command, RecordingOptions& options) {
    const char* const group = "Recording";
    options.read.on_signal = throwIfInterrupted;
    command.add_option("recording", options.path, "The recording to read; /dev/stdin for a pipe")
        ->required()
        ->option_text("RECORDING REQUIRED");
    command
        .add_option("--sensor", options.read.sensor_size,
                    "Size of the sensor, pixels, if the recording does not state it")
        ->option_text("WIDTHxHEIGHT")
        ->group(group);
    addFormatOption(command, "--input-format", "Format of the recording, if it cannot be detected",
                    recording::readableFormats(), options.read.format)
        ->group(group);
    command
        .add_option_function<std::string>(
            "--columns", [&options](const std::string& text) { setColumns(options, text); },
            "Order of the columns of a text recording [t,x,y,p, or from its header line]")
        ->option_text("ORDER")
        ->group(group);
    command
        .add_option(
            "--time-unit", options.read.text.time_unit,
            "Unit of the times of a text recording [s if they have a decimal point, else us]")
        ->option_text("s|ms|us|ns")
        ->group(group);
}

bool readUnlessInterrupted(WindowReader& reader) {
    try {
        return reader.read();
    } catch (const Interrupted&) {
        return false;
    }
}

}  // namespace kelvora::tool
