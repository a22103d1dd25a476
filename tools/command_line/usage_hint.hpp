// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace kelvora::tool {

/// A line about the first command or option that does not exist but resembles one that does:
/// "'clutser' is not a command; did you mean cluster?". Empty if there is none.
///
/// \param arguments  Without the name of the program.
std::string usageHint(const CLI::App& program, const std::vector<std::string>& arguments);

}  // namespace kelvora::tool
