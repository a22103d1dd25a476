// SPDX-License-Identifier: MIT
#include "command_line/bench_report.hpp"

#include <fmt/format.h>

namespace kelvora::tool {

namespace {

using Figure = std::optional<double>;

Figure quotient(double dividend, double divisor) {
    return divisor > 0 ? Figure(dividend / divisor) : std::nullopt;
}

Figure eventsPerSecond(const PassFigures& pass) {
    return quotient(static_cast<double>(pass.events), pass.seconds);
}

Figure windowsPerSecond(const PassFigures& pass) {
    return quotient(static_cast<double>(pass.window_times.count()), pass.seconds);
}

/// Seconds of the recording processed per second.
Figure realTimeFactor(const PassFigures& pass) {
    return pass.recorded_us > 0
               ? quotient(static_cast<double>(pass.recorded_us) * 1e-6, pass.seconds)
               : std::nullopt;
}

Figure windowMilliseconds(const PassFigures& pass, double share) {
    return pass.window_times.count() > 0
               ? Figure(static_cast<double>(pass.window_times.quantile(share).count()) * 1e-6)
               : std::nullopt;
}

Figure clustersPerWindow(const PassFigures& pass) {
    return quotient(static_cast<double>(pass.clusters),
                    static_cast<double>(pass.window_times.count()));
}

Figure peakMegabytes(const PassFigures& pass) {
    return pass.peak_memory ? Figure(static_cast<double>(*pass.peak_memory) * 1e-6) : std::nullopt;
}

std::string textOf(Figure figure, int decimals) {
    return figure ? fmt::format("{:.{}f}", *figure, decimals) : "-";
}

std::string rowOf(const PassFigures& pass, bool is_method) {
    const auto of_method = [&](Figure figure, int decimals) {
        return textOf(is_method ? figure : std::nullopt, decimals);
    };
    return fmt::format("{:<12}{:>13}{:>11}{:>11}{:>11}{:>13}{:>10}{:>13}\n", pass.name,
                       textOf(eventsPerSecond(pass), 0), textOf(windowsPerSecond(pass), 0),
                       of_method(windowMilliseconds(pass, 0.5), 3),
                       of_method(windowMilliseconds(pass, 0.99), 3),
                       of_method(clustersPerWindow(pass), 1), textOf(peakMegabytes(pass), 1),
                       textOf(realTimeFactor(pass), 1));
}

nlohmann::ordered_json toJson(Figure figure) {
    return figure ? nlohmann::ordered_json(*figure) : nlohmann::ordered_json(nullptr);
}

nlohmann::ordered_json jsonOf(const PassFigures& pass) {
    nlohmann::ordered_json json = {{"name", pass.name},
                                   {"events", pass.events},
                                   {"windows", pass.window_times.count()},
                                   {"recorded_us", pass.recorded_us},
                                   {"seconds", pass.seconds},
                                   {"events_per_s", toJson(eventsPerSecond(pass))},
                                   {"windows_per_s", toJson(windowsPerSecond(pass))},
                                   {"real_time_factor", toJson(realTimeFactor(pass))},
                                   {"peak_memory_bytes", nullptr}};
    if (pass.peak_memory) {
        json["peak_memory_bytes"] = *pass.peak_memory;
    }
    return json;
}

nlohmann::ordered_json jsonOfMethod(const PassFigures& pass) {
    nlohmann::ordered_json json = jsonOf(pass);
    json["clusters"] = pass.clusters;
    json["window_median_ms"] = toJson(windowMilliseconds(pass, 0.5));
    json["window_p99_ms"] = toJson(windowMilliseconds(pass, 0.99));
    return json;
}

}  // namespace

std::string tableOf(const BenchReport& report) {
    const PassFigures& reading = report.reading;
    std::string text = fmt::format(
        "{} events in {} windows of {}, {:.6f} s, {} x {} pixels\n\n"
        "{:<12}{:>13}{:>11}{:>11}{:>11}{:>13}{:>10}{:>13}\n",
        reading.events, reading.window_times.count(), toString(report.window),
        static_cast<double>(reading.recorded_us) * 1e-6, report.sensor.width, report.sensor.height,
        "method", "events/s", "windows/s", "median ms", "99 % ms", "clusters/win", "peak MB",
        "x real time");
    text += rowOf(reading, false);
    for (const PassFigures& pass : report.methods) {
        text += rowOf(pass, true);
    }
    return text;
}

nlohmann::ordered_json jsonOf(const BenchReport& report) {
    nlohmann::ordered_json json = {{"recording", report.recording},
                                   {"format", report.format},
                                   {"sensor_width", report.sensor.width},
                                   {"sensor_height", report.sensor.height},
                                   {"window_us", report.window.microseconds},
                                   {"reading", jsonOf(report.reading)},
                                   {"methods", nlohmann::ordered_json::array()}};
    for (const PassFigures& pass : report.methods) {
        json["methods"].push_back(jsonOfMethod(pass));
    }
    return json;
}

}  // namespace kelvora::tool
