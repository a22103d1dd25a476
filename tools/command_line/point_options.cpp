// SPDX-License-Identifier: MIT
#include "command_line/point_options.hpp"

#include <CLI/CLI.hpp>
#include <map>
#include <string>

#include "command_line/number_checks.hpp"

namespace kelvora::tool {

EventScales PointOptions::scales() const {
    return {scale_x, scale_y, scale_time.value_or(static_cast<float>(1.0 / us_per_pixel))};
}

unsigned long long PointOptions::timeLength() const {
    return time_length ? time_length->microseconds : std::numeric_limits<unsigned long long>::max();
}

void declareOptions(CLI::App& command, PointOptions& options) {
    const auto add = [&command](const char* name, auto& value, const char* text,
                                const char* description) {
        return command.add_option(name, value, description)
            ->option_text(text)
            ->group("Density and centroid methods");
    };
    add("--dim", options.dim, "2|3 [2]", "2: cluster in the image plane; 3: in space and time")
        ->check(CLI::IsMember({2, 3}).description(""));
    add("--scale-x", options.scale_x, "FACTOR [1]", "Scaled units per pixel column")
        ->check(isPositive());
    add("--scale-y", options.scale_y, "FACTOR [1]", "Scaled units per pixel row")
        ->check(isPositive());
    auto* const us_per_pixel =
        add("--us-per-pixel", options.us_per_pixel, "US [1000]",
            "Microseconds that count as much as one pixel in three dimensions")
            ->check(isPositive());
    add("--scale-time", options.scale_time, "FACTOR", "The same as scaled units per microsecond")
        ->check(isPositive())
        ->excludes(us_per_pixel);
    add("--capacity", options.capacity, "EVENTS [all]",
        "Maximum number of events to cluster; the newest are kept")
        ->check(isPositive());
    add("--time-length", options.time_length, "TIME [all]",
        "Window of the event counter, with unit: forgets events only across gaps longer than a "
        "hundredth of it");
    add("--precision", options.precision, "float|double [float]",
        "Floating-point type of the computation")
        ->transform(
            CLI::CheckedTransformer(std::map<std::string, Precision>{{"float", Precision::Float},
                                                                     {"double", Precision::Double}})
                .description(""));
}

}  // namespace kelvora::tool
