// SPDX-License-Identifier: MIT
#include "command_line/report_files.hpp"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "command_line/standard_streams.hpp"
#include "command_line/write_options.hpp"

namespace kelvora::tool {

namespace {

/// Bytes that are not UTF-8, as in some names of files, become U+FFFD.
std::string textOf(const nlohmann::ordered_json& json) {
    return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n';
}

bool hasTable(const ReportOptions& options) {
    return options.json != "-";
}

}  // namespace

void declareOptions(CLI::App& command, ReportOptions& options) {
    command
        .add_option("--json", options.json, "File for the results as JSON; - is standard output")
        ->option_text("FILE");
    declareOptions(command, options.write);
}

std::vector<NamedFile> filesOf(const ReportOptions& options) {
    return {{"--json", options.json}, {"the table", hasTable(options) ? "-" : ""}};
}

ReportFiles::ReportFiles(const ReportOptions& options) : has_table(hasTable(options)) {
    if (!options.json.empty()) {
        json_file.emplace(options.json, options.write);
    }
}

void ReportFiles::write(const std::string& table, const nlohmann::ordered_json& json) {
    if (has_table) {
        print(table);
    }
    if (json_file) {
        json_file->write(textOf(json));
    }
}

void ReportFiles::close() {
    if (json_file) {
        json_file->close();
    }
}

}  // namespace kelvora::tool
