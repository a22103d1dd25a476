// SPDX-License-Identifier: MIT
#include "command_line/usage_hint.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "sessions/suggestion.hpp"

namespace kelvora::tool {

namespace {

std::string hintFor(const std::string& word, const char* kind,
                    const std::vector<std::string>& candidates) {
    const std::string suggestion = suggestionFor(word, candidates);
    return suggestion.empty() ? "" : fmt::format("'{}' is not {}{}", word, kind, suggestion);
}

std::vector<std::string> optionsOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::string wrongOption(const CLI::App& command, const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        const std::string name = argument.substr(0, argument.find('='));
        if (name.rfind("--", 0) == 0 && name.size() > 2 &&
            command.get_option_no_throw(name) == nullptr) {
            return hintFor(name, "an option", optionsOf(command));
        }
    }
    return {};
}

}  // namespace

std::string usageHint(const CLI::App& program, const std::vector<std::string>& arguments) {
    if (arguments.empty()) {
        return {};
    }
    std::vector<std::string> commands;
    for (const CLI::App* command : program.get_subcommands(nullptr)) {
        commands.push_back(command->get_name());
        if (command->get_name() == arguments.front()) {
            return wrongOption(*command, {arguments.begin() + 1, arguments.end()});
        }
    }
    if (arguments.front().rfind('-', 0) == 0) {
        return wrongOption(program, arguments);
    }
    return hintFor(arguments.front(), "a command", commands);
}

}  // namespace kelvora::tool
