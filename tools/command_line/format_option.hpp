// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <optional>
#include <string>
#include <vector>

namespace kelvora::tool {

/// Adds an option that takes one of the names of formats in `names`. Any other word is refused with
/// a list of the names.
CLI::Option* addFormatOption(CLI::App& command, const std::string& option,
                             const std::string& description, const std::vector<std::string>& names,
                             std::optional<std::string>& chosen);

}  // namespace kelvora::tool
