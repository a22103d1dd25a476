// SPDX-License-Identifier: MIT
#include <fmt/format.h>
#include <png.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <nanoflann.hpp>
#include <new>
#include <nlohmann/json.hpp>
#include <opencv2/core.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "command_line/bench_command.hpp"
#include "command_line/cluster_command.hpp"
#include "command_line/command.hpp"
#include "command_line/info_command.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/score_command.hpp"
#include "command_line/setting_names.hpp"
#include "command_line/simulate_command.hpp"
#include "command_line/standard_streams.hpp"
#include "command_line/usage_error.hpp"
#include "command_line/usage_hint.hpp"
#include "command_line/write_options.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "kelvora/version.hpp"

namespace {

namespace tool = kelvora::tool;

constexpr int kExitFailure = 1;
constexpr int kExitWrongUsage = 2;
constexpr const char* kNoMemory = "not enough memory";

std::string versionText() {
    return fmt::format(
        "kelvora {}\nOpenCV {}, nanoflann {}.{}.{}, CLI11 {}, {{fmt}} {}.{}.{}, libpng {}, "
        "nlohmann-json {}.{}.{}",
        KELVORA_VERSION, CV_VERSION, NANOFLANN_VERSION >> 8, (NANOFLANN_VERSION >> 4) & 0xF,
        NANOFLANN_VERSION & 0xF, CLI11_VERSION, FMT_VERSION / 10000, FMT_VERSION / 100 % 100,
        FMT_VERSION % 100, PNG_LIBPNG_VER_STRING, NLOHMANN_JSON_VERSION_MAJOR,
        NLOHMANN_JSON_VERSION_MINOR, NLOHMANN_JSON_VERSION_PATCH);
}

/// Prints a line for the user, and where results are that a failure has left incomplete.
void report(const std::string& line) {
    const std::string& kept = tool::partialOutputs();
    tool::printError("kelvora: " + line.substr(0, line.find('\n')) +
                     (kept.empty() ? "" : "; the results until then are in " + kept) + '\n');
}

bool has_memory_run_out = false;

/// Notes what streams hide: after a failed allocation, they drop text and go on.
void noteThatMemoryHasRunOut() {
    has_memory_run_out = true;
    throw std::bad_alloc();
}

/// Answers --help and --version, and command lines that cannot be parsed.
int answer(const CLI::App& program, const CLI::ParseError& error,
           const std::vector<std::string>& arguments) {
    std::ostringstream output;
    std::ostringstream errors;
    std::set_new_handler(noteThatMemoryHasRunOut);
    const int status = program.exit(error, output, errors);
    if (has_memory_run_out) {
        throw std::bad_alloc();
    }
    if (status == 0) {
        tool::print(output.str());
        return 0;
    }
    const std::string hint = tool::usageHint(program, arguments);
    tool::printError(hint.empty() ? errors.str() : "kelvora: " + hint + '\n');
    return kExitWrongUsage;
}

int run(int argc, char** argv) {
    CLI::App program("Finds clusters of activity in the recordings of event cameras.", "kelvora");
    program.set_version_flag("--version", versionText());
    program.require_subcommand(1);
    tool::InfoCommand info(program);
    tool::ClusterCommand cluster(program);
    tool::SimulateCommand simulate(program);
    tool::ScoreCommand score(program);
    tool::BenchCommand bench(program);
    const std::array<const tool::Command*, 5> commands = {&info, &cluster, &simulate, &score,
                                                          &bench};
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return answer(program, error, {argv + 1, argv + argc});
    }
    const auto* const chosen = std::find_if(
        commands.begin(), commands.end(), [](const tool::Command* one) { return one->isChosen(); });
    return (*chosen)->run();
}

/// Reports the exception that is being handled.
int statusOfFailure() {
    try {
        throw;
    } catch (const tool::Interrupted& end) {
        report(end.what());
        return tool::exitStatus();
    } catch (const tool::UsageError& error) {
        report(error.what());
        return kExitWrongUsage;
    } catch (const kelvora::recording::RecordingError& error) {
        const bool has_reader = error.kind() != kelvora::recording::ErrorKind::ReaderEnded;
        if (!has_reader && tool::partialOutputs().empty()) {
            tool::endByBrokenPipe();
        }
        report(error.message(tool::optionOf));
        if (!has_reader) {
            tool::endByBrokenPipe();
        }
    } catch (const std::bad_alloc&) {
        report(kNoMemory);
    } catch (const cv::Exception& error) {
        report(error.code == cv::Error::StsNoMem ? kNoMemory : error.what());
    } catch (const std::exception& error) {
        report(error.what());
    }
    return kExitFailure;
}

void reportNoMemory() {
    tool::printError("kelvora: ");
    tool::printError(kNoMemory);
    tool::printError("\n");
}

/// Whether the exception that is being handled says that memory has run out.
bool isMemoryMissing() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return true;
    } catch (...) {
        return false;
    }
}

/// Describes the exception and aborts.
const std::terminate_handler kUsualEnd = std::get_terminate();

/// Ends the program after an exception that nothing catches. Functions of CLI11 and nlohmann-json
/// that must not throw may lack memory: this is no error of the program. Unfinished files keep
/// their temporary names then.
[[noreturn]] void end() {
    if (std::current_exception() != nullptr && isMemoryMissing()) {
        reportNoMemory();
        std::_Exit(kExitFailure);
    }
    kUsualEnd();
    std::abort();
}

}  // namespace

int main(int argc, char** argv) {
    std::set_terminate(end);
    tool::occupyStandardStreams();
    tool::catchSignals();
    try {
        const int status = run(argc, argv);
        if (tool::isInterrupted()) {
            report(tool::Interrupted().what());
        }
        return status;
    } catch (...) {
        try {
            return statusOfFailure();
        } catch (...) {
            // There is no memory for the message, either.
            reportNoMemory();
            return kExitFailure;
        }
    }
}
