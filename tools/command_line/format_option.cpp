// SPDX-License-Identifier: MIT
#include "command_line/format_option.hpp"

#include <fmt/format.h>

#include <CLI/Error.hpp>
#include <algorithm>

namespace kelvora::tool {

CLI::Option* addFormatOption(CLI::App& command, const std::string& option,
                             const std::string& description, const std::vector<std::string>& names,
                             std::optional<std::string>& chosen) {
    const auto choose = [names, &chosen](const std::string& text) {
        if (std::find(names.begin(), names.end(), text) == names.end()) {
            throw CLI::ConversionError(
                fmt::format("'{}' is not one of {}", text, fmt::join(names, ", ")));
        }
        chosen = text;
    };
    return command.add_option_function<std::string>(option, choose, description)
        ->option_text(fmt::format("{}", fmt::join(names, "|")));
}

}  // namespace kelvora::tool
