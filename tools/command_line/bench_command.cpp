// SPDX-License-Identifier: MIT
#include "command_line/bench_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "command_line/file_check.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/parameter_options.hpp"
#include "command_line/peak_memory.hpp"
#include "command_line/progress_line.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "recording/window_slicer.hpp"
#include "sessions/methods.hpp"
#include "sessions/recording_session.hpp"
#include "sessions/session.hpp"
#include "sessions/window_reader.hpp"

namespace kelvora::tool {

namespace {

using Clock = std::chrono::steady_clock;

const std::vector<std::string> kDefaultMethods = {"grid", "density2d", "density3d", "centroid2d"};
constexpr unsigned long long kDefaultClusters = 12;

/// A method in a number of dimensions, if it has a choice.
struct TimedMethod {
    std::string name;  ///< On the command line.
    std::string method;
    int dim = 2;
};

std::vector<TimedMethod> makeTimedMethods() {
    std::vector<TimedMethod> timed;
    for (const Method& method : tool::methods()) {
        if (method.uses(Group::Points)) {
            timed.push_back({method.name + "2d", method.name, 2});
            timed.push_back({method.name + "3d", method.name, 3});
        } else {
            timed.push_back({method.name, method.name});
        }
    }
    return timed;
}

/// The methods that can be timed.
const std::vector<TimedMethod>& timedMethods() {
    static const std::vector<TimedMethod> all = makeTimedMethods();
    return all;
}

std::vector<std::string> namesOfTimedMethods() {
    std::vector<std::string> names;
    for (const TimedMethod& timed : timedMethods()) {
        names.push_back(timed.name);
    }
    return names;
}

/// \param name  A name from the table.
const TimedMethod& timedMethod(const std::string& name) {
    return *std::find_if(timedMethods().begin(), timedMethods().end(),
                         [&name](const TimedMethod& timed) { return timed.name == name; });
}

bool isOfOneMethod(const Parameter& parameter) {
    return parameter.group != Group::Points &&
           std::any_of(tool::methods().begin(), tool::methods().end(),
                       [&parameter](const Method& method) { return method.uses(parameter.group); });
}

bool isIn3d(const std::string& name) {
    return timedMethod(name).dim == 3;
}

/// A pipe can be read only once.
void requireFile(const std::filesystem::path& path) {
    std::error_code error;
    const auto type = std::filesystem::status(path, error).type();
    if (type == std::filesystem::file_type::fifo || type == std::filesystem::file_type::character) {
        throw recording::RecordingError(recording::ErrorKind::NotSuitable, path.string(),
                                        "is a pipe, but has to be read several times", {},
                                        "write it to a file first");
    }
}

/// Clusters the windows in one pass.
class PassTimer {
public:
    PassTimer(Session* session_, PassFigures& figures_) : session(session_), figures(figures_) {}

    void take(WindowReader& reader) {
        recording::Window window;
        while (!isInterrupted() && reader.next(window)) {
            takeWindow(window);
        }
    }

private:
    void takeWindow(const recording::Window& window) {
        const auto start = Clock::now();
        const std::size_t clusters =
            session == nullptr ? 0 : session->cluster(window).clusters.size();
        const auto time = Clock::now() - start;
        if (figures.events == 0) {
            first_time = window.first->timestamp;
        }
        figures.recorded_us = (window.last - 1)->timestamp - first_time;
        figures.window_times.add(time);
        figures.seconds += std::chrono::duration<double>(time).count();
        figures.events += window.size();
        figures.clusters += clusters;
    }

    Session* session;
    PassFigures& figures;
    std::uint64_t first_time = 0;
};

}  // namespace

BenchCommand::BenchCommand(CLI::App& program)
    : Command(program, "bench", "Measure the speed of the methods on a recording"),
      methods(kDefaultMethods) {
    builder.settings.centroid.clusters = kDefaultClusters;
    declareOptions();
    command->parse_complete_callback([this] { checkOptions(); });
}

void BenchCommand::declareOptions() {
    tool::declareOptions(*command, recording);
    command
        ->add_option("--methods", methods,
                     fmt::format("Methods to measure, separated by commas: {}",
                                 fmt::join(namesOfTimedMethods(), ", ")))
        ->delimiter(',')
        ->check(CLI::IsMember(namesOfTimedMethods()).description(""))
        ->option_text(fmt::format("LIST [{}]", fmt::join(kDefaultMethods, ",")));
    for (const char* const keyword :
         {"window_us", "from_us", "to_us", "max_window_events", "max_memory"}) {
        declareParameter(*command, builder, *findParameter(keyword));
    }
    tool::declareOptions(*command, report_options);
    for (const Parameter& parameter : parameterTable()) {
        if (isOfOneMethod(parameter)) {
            declareParameter(*command, builder, parameter);
        }
    }
    command->get_option("--clusters")
        ->description("Number of clusters in a window")
        ->option_text(fmt::format("NUMBER [{}]", kDefaultClusters));
}

void BenchCommand::checkOptions() const {
    if (builder.settings.windows.window.microseconds > kLongestWindowIn3d.microseconds &&
        std::any_of(methods.begin(), methods.end(), isIn3d)) {
        throw CLI::ValidationError("--window", "must be at most " + toString(kLongestWindowIn3d) +
                                                   " with methods in three dimensions");
    }
    for (const Parameter* const parameter : builder.givenParameters()) {
        const auto uses = [parameter](const std::string& name) {
            return methodOf(timedMethod(name).method).uses(parameter->group);
        };
        if (isOfOneMethod(*parameter) && std::none_of(methods.begin(), methods.end(), uses)) {
            throw CLI::ValidationError(
                parameter->option,
                fmt::format("is not used with --methods {}", fmt::join(methods, ",")));
        }
    }
    for (const std::string& name : methods) {
        // Parameters of the other listed methods may be given, too.
        SettingsBuilder of_method;
        of_method.settings = settingsOf(name);
        checkParameters(of_method);
    }
}

Settings BenchCommand::settingsOf(const std::string& name) const {
    const TimedMethod& timed = timedMethod(name);
    Settings settings = builder.settings;
    settings.method = timed.method;
    settings.point.dim = timed.dim;
    return settings;
}

int BenchCommand::run() const {
    checkFiles({{{"the recording", recording.path}}, filesOf(report_options), {}});
    ReportFiles files(report_options);
    // The figures from before a defect are still valid: report them first, then the defect.
    std::exception_ptr defect;
    const BenchReport report = measure(defect);
    files.write(tableOf(report), jsonOf(report));
    if (defect) {
        std::rethrow_exception(defect);
    }
    throwIfTerminated();
    files.close();
    return exitStatus();
}

BenchReport BenchCommand::measure(std::exception_ptr& defect) const {
    requireFile(recording.path);
    BenchReport report;
    {
        const WindowReader reader =
            openWindows(recording.path, recording.read, builder.settings, kOptionWording);
        report.recording = recording.path.string();
        report.format = reader.source().format();
        report.sensor = reader.sensorSize();
        report.window = builder.settings.windows.window;
    }
    const auto start = Clock::now();
    report.reading = pass("(reading)", builder.settings, false, defect);
    report.reading.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    for (const std::string& name : methods) {
        if (!isInterrupted()) {
            report.methods.push_back(pass(name, settingsOf(name), true, defect));
        }
    }
    return report;
}

/// Reads the recording, and clusters each of its windows if wanted.
PassFigures BenchCommand::pass(const std::string& name, const Settings& settings, bool clusters,
                               std::exception_ptr& defect) const {
    PassFigures figures;
    figures.name = name;
    const bool is_peak_its_own = resetPeakMemory();
    WindowReader reader = openWindows(recording.path, recording.read, settings, kOptionWording);
    std::optional<Session> session;
    if (clusters) {
        session.emplace(makeSession(reader, settings));
    }
    PassTimer timer(session ? &*session : nullptr, figures);
    ProgressLine progress(recording.path.string() + ", " + name, true);
    bool has_more = true;
    while (has_more && !isInterrupted()) {
        has_more = readUnlessInterrupted(reader);
        timer.take(reader);
        progress.update(reader.source().bytesRead(), reader.source().fileSize());
    }
    defect = reader.defect() ? reader.defect() : defect;
    progress.clear();
    if (is_peak_its_own) {
        figures.peak_memory = peakMemory();
    }
    return figures;
}

}  // namespace kelvora::tool
