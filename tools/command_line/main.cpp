// SPDX-License-Identifier: MIT
#include <fmt/format.h>
#include <png.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <nanoflann.hpp>
#include <nlohmann/json.hpp>
#include <opencv2/core/version.hpp>
#include <string>

#include "command_line/bench_command.hpp"
#include "command_line/cluster_command.hpp"
#include "command_line/info_command.hpp"
#include "command_line/interrupt.hpp"
#include "command_line/score_command.hpp"
#include "command_line/setting_names.hpp"
#include "command_line/simulate_command.hpp"
#include "command_line/usage_hint.hpp"
#include "kelvora/recording/recording_error.hpp"
#include "kelvora/version.hpp"

namespace {

constexpr int kExitBadInput = 1;
constexpr int kExitWrongUsage = 2;

std::string versionText() {
    return fmt::format(
        "kelvora {}\nOpenCV {}, nanoflann {}.{}.{}, CLI11 {}, {{fmt}} {}.{}.{}, libpng {}, "
        "nlohmann-json {}.{}.{}",
        KELVORA_VERSION, CV_VERSION, NANOFLANN_VERSION >> 8, (NANOFLANN_VERSION >> 4) & 0xF,
        NANOFLANN_VERSION & 0xF, CLI11_VERSION, FMT_VERSION / 10000, FMT_VERSION / 100 % 100,
        FMT_VERSION % 100, PNG_LIBPNG_VER_STRING, NLOHMANN_JSON_VERSION_MAJOR,
        NLOHMANN_JSON_VERSION_MINOR, NLOHMANN_JSON_VERSION_PATCH);
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App program("Finds clusters of activity in the recordings of event cameras.", "kelvora");
    program.set_version_flag("--version", versionText());
    program.require_subcommand(1);
    const kelvora::tool::InfoCommand info(program);
    const kelvora::tool::ClusterCommand cluster(program);
    kelvora::tool::SimulateCommand simulate(program);
    const kelvora::tool::ScoreCommand score(program);
    const kelvora::tool::BenchCommand bench(program);
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const std::string hint = error.get_exit_code() == 0
                                     ? ""
                                     : kelvora::tool::usageHint(program, {argv + 1, argv + argc});
        if (!hint.empty()) {
            fmt::print(stderr, "kelvora: {}\n", hint);
            return kExitWrongUsage;
        }
        return program.exit(error) == 0 ? 0 : kExitWrongUsage;
    }

    kelvora::tool::catchInterrupts();
    try {
        if (info.isChosen()) {
            return info.run();
        }
        if (score.isChosen()) {
            return score.run();
        }
        if (bench.isChosen()) {
            return bench.run();
        }
        return cluster.isChosen() ? cluster.run() : simulate.run();
    } catch (const kelvora::recording::RecordingError& error) {
        fmt::print(stderr, "kelvora: {}\n", error.message(kelvora::tool::optionOf));
        return kExitBadInput;
    } catch (const std::exception& error) {
        fmt::print(stderr, "kelvora: {}\n", error.what());
        return kExitBadInput;
    }
}
