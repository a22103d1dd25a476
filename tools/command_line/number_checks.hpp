// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>

/// \file
/// What numbers on the command line must be. Those of the argument parser let through what is not a
/// number (`nan`), and write out the largest `double` with all its 309 digits.

namespace kelvora::tool {

/// Finite and larger than 0.
CLI::Validator isPositive();

/// Finite and not negative.
CLI::Validator isNotNegative();

}  // namespace kelvora::tool
