// SPDX-License-Identifier: MIT
#include "command_line/cluster_command.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <string>

#include "command_line/interrupt.hpp"
#include "command_line/output_options.hpp"
#include "command_line/parameter_options.hpp"
#include "command_line/progress_line.hpp"
#include "command_line/standard_streams.hpp"
#include "sessions/recording_session.hpp"
#include "sessions/session.hpp"
#include "sessions/window_reader.hpp"

namespace kelvora::tool {

namespace {

std::string summaryOf(const Session& session, const WindowReader& reader) {
    const recording::EventCleaner& cleaner = reader.eventCleaner();
    std::string text = fmt::format(
        "kelvora: {} clusters in {} windows with events; dropped {} events off the sensor, "
        "corrected {} times out of order",
        session.clusterCount(), session.windowCount(), cleaner.droppedOffSensor(),
        cleaner.clampedTimes());
    if (reader.source().skippedWords() > 0) {
        text += fmt::format(", skipped {} unknown words", reader.source().skippedWords());
    }
    const std::string remarks = remarksOf(session, reader);
    return text + (remarks.empty() ? "" : "; ") + remarks + '\n';
}

}  // namespace

ClusterCommand::ClusterCommand(CLI::App& program)
    : Command(program, "cluster", "Find the clusters of a recording, window by window") {
    declareOptions(*command, recording);
    declareParameters(*command, builder);
    declareOptions(*command, output);
    command->add_flag("-q,--quiet", is_quiet, "Print no summary and no progress")->group("Output");
    command->parse_complete_callback([this] {
        checkParameters(builder);
        checkOutput(output, builder.settings);
    });
}

int ClusterCommand::run() const {
    checkFiles({{{"the recording", recording.path}}, filesOf(output), output.pictures.frames_dir});
    const Settings& settings = builder.settings;
    WindowReader reader = openWindows(recording.path, recording.read, settings, kOptionWording);
    Session session = makeSession(reader, settings);
    ResultFiles files(output, settings.track.is_wanted, reader.sensorSize());
    ProgressLine progress(recording.path.string(), !is_quiet);

    bool has_more = true;
    while (has_more && !isInterrupted()) {
        has_more = readUnlessInterrupted(reader);
        recording::Window window;
        while (!isInterrupted() && reader.next(window)) {
            files.write(window, session.cluster(window));
        }
        progress.update(reader.source().bytesRead(), reader.source().fileSize());
    }
    files.finish();
    if (!reader.defect() && !isTerminated()) {
        files.close();
    }
    progress.clear();

    if (!is_quiet) {
        printError(summaryOf(session, reader));
    }
    if (reader.defect()) {
        std::rethrow_exception(reader.defect());
    }
    throwIfTerminated();
    return exitStatus();
}

}  // namespace kelvora::tool
