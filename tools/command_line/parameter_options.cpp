// SPDX-License-Identifier: MIT
#include "command_line/parameter_options.hpp"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "sessions/parameter_error.hpp"

namespace kelvora::tool {

const Wording kOptionWording = {
    [](const Parameter& parameter) { return std::string(parameter.option); },
    [](const Parameter& parameter, const std::string& value) {
        return value.empty() ? std::string(parameter.option)
                             : fmt::format("{} {}", parameter.option, value);
    }};

namespace {

CLI::ValidationError toUsageError(const ParameterError& error) {
    return CLI::ValidationError(error.parameter->option, describe(error, kOptionWording));
}

/// Placeholder and default: "PIXELS [5]".
std::string textOf(const Parameter& parameter) {
    const std::vector<std::string> words = parameter.words();
    const std::string placeholder =
        words.empty() ? parameter.unit : fmt::format("{}", fmt::join(words, "|"));
    const std::string value = parameter.defaultText();
    return value.empty() ? placeholder : fmt::format("{} [{}]", placeholder, value);
}

void set(SettingsBuilder& builder, const Parameter& parameter, const std::string& text) {
    try {
        builder.set(parameter, parameter.isFlag() ? Value(true) : parameter.parse(text));
    } catch (const ParameterError& error) {
        throw toUsageError(error);
    }
}

}  // namespace

void declareParameter(CLI::App& command, SettingsBuilder& builder, const Parameter& parameter) {
    const auto take = [&builder, &parameter](const std::string& text) {
        set(builder, parameter, text);
    };
    CLI::Option* const option =
        parameter.isFlag()
            ? command.add_flag_callback(
                  parameter.option, [take] { take(""); }, parameter.sentence)
            : command.add_option_function<std::string>(parameter.option, take, parameter.sentence)
                  ->option_text(textOf(parameter));
    if (parameter.group != Group::General) {
        option->group(titleOf(parameter.group));
    }
}

void declareParameters(CLI::App& command, SettingsBuilder& builder) {
    for (const Parameter& parameter : parameterTable()) {
        declareParameter(command, builder, parameter);
    }
}

void checkParameters(const SettingsBuilder& builder) {
    try {
        builder.check();
    } catch (const ParameterError& error) {
        throw toUsageError(error);
    }
}

}  // namespace kelvora::tool
