// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kelvora::tool {

/// Opens standard input, output and error if they are closed, so that no other file gets their
/// numbers. Reading and writing them still fails.
void occupyStandardStreams();

/// Writes to standard output.
///
/// \throws recording::RecordingError  if it is closed or full.
void print(std::string_view text);

/// Writes to standard error. Failures are ignored: there is no other place to report them.
void printError(std::string_view text) noexcept;

}  // namespace kelvora::tool
