// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>
#include <vector>

#include "sessions/parameters.hpp"

namespace kelvora::tool {

/// Adds an option for each parameter of some groups.
///
/// \param builder  Gets the values. Must outlive the command.
void declareParameters(CLI::App& command, SettingsBuilder& builder,
                       const std::vector<Group>& groups);

/// Adds an option for one parameter.
void declareParameter(CLI::App& command, SettingsBuilder& builder, const Parameter& parameter);

/// Checks combinations of options.
/// \throws CLI::ValidationError  for the first contradiction.
void checkParameters(const SettingsBuilder& builder);

}  // namespace kelvora::tool
