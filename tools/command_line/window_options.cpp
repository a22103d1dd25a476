// SPDX-License-Identifier: MIT
#include "command_line/window_options.hpp"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

namespace kelvora::tool {

namespace {

const std::map<std::string, Polarity> kPolarities = {{"all", Polarity::All},
                                                     {"on", Polarity::On},
                                                     {"off", Polarity::Off},
                                                     {"separate", Polarity::Separate}};

}  // namespace

void declareWindows(CLI::App& command, WindowOptions& options) {
    command
        .add_option(
            "--window", options.window,
            "Length of a window in event time, with its unit: us, ms or s. Windows begin at "
            "multiples of it")
        ->option_text("TIME [" + toString(options.window) + "]");
    command
        .add_option("--from", options.from,
                    "Ignore events before this time, counted from the first event, with unit")
        ->option_text("TIME [0s]");
    command
        .add_option("--to", options.to,
                    "Ignore events from this time on, counted from the first event, with unit")
        ->option_text("TIME");
}

void declarePolarity(CLI::App& command, WindowOptions& options) {
    command
        .add_option(
            "--polarity", options.polarity,
            "Events to cluster; 'separate' uses all, but requires both polarities in a cell")
        ->transform(CLI::CheckedTransformer(kPolarities).description(""))
        ->option_text("all|on|off|separate [all]");
}

void checkOptions(const WindowOptions& options) {
    if (options.window.microseconds == 0) {
        throw CLI::ValidationError("--window", "must be longer than 0");
    }
    if (options.to && options.to->microseconds <= options.from.microseconds) {
        throw CLI::ValidationError("--to", "must be later than --from");
    }
}

}  // namespace kelvora::tool
