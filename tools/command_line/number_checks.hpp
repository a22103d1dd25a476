// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

/// \file
/// Range checks for numbers on the command line. The argument parser's checks accept `nan`, and
/// print the largest `double` with all its 309 digits.

namespace kelvora::tool {

/// Finite and larger than 0.
CLI::Validator isPositive();

/// Finite and not negative.
CLI::Validator isNotNegative();

}  // namespace kelvora::tool
