// SPDX-License-Identifier: MIT
#include "command_line/write_options.hpp"

#include <CLI/CLI.hpp>
#include <filesystem>

#include "command_line/interrupt.hpp"

namespace kelvora::tool {

namespace {

std::string& partialNames() {
    static std::string names;
    return names;
}

}  // namespace

CLI::Option* declareOptions(CLI::App& command, recording::WriteOptions& options) {
    options.on_signal = throwIfTerminated;
    options.on_partial = [](const std::filesystem::path& partial) {
        std::string& names = partialNames();
        names += (names.empty() ? "" : ", ") + partial.string();
    };
    return command.add_flag_callback(
        "--no-overwrite", [&options] { options.overwrite = false; }, "Refuse outputs that exist");
}

const std::string& partialOutputs() {
    return partialNames();
}

}  // namespace kelvora::tool
