// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/App.hpp>

#include "sessions/parameter_error.hpp"
#include "sessions/parameters.hpp"
#include "sessions/settings_builder.hpp"

namespace kelvora::tool {

/// Names parameters by their options.
extern const Wording kOptionWording;

/// Adds an option for each parameter.
///
/// \param builder  Gets the values. Must outlive the command.
void declareParameters(CLI::App& command, SettingsBuilder& builder);

/// Adds an option for one parameter.
void declareParameter(CLI::App& command, SettingsBuilder& builder, const Parameter& parameter);

/// Checks combinations of options.
/// \throws CLI::ValidationError  for the first contradiction.
void checkParameters(const SettingsBuilder& builder);

}  // namespace kelvora::tool
