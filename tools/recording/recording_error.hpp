// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace kelvora::recording {

/// A recording that cannot be read or written.
///
/// The message is one line that needs no context: `FILE: problem, where, what to do`.
class RecordingError : public std::runtime_error {
public:
    /// \param file  Path of the recording, as the user gave it.
    /// \param problem  What is wrong, as the rest of a sentence that begins with the file: "is
    ///     empty".
    /// \param where  Byte or line; empty if the whole file is meant.
    /// \param remedy  What the user can do about it.
    RecordingError(const std::string& file, const std::string& problem, const std::string& where,
                   const std::string& remedy);
};

/// A field of a file as it may stand in a message: the file may hold anything, the message is one
/// short line.
std::string inQuotes(std::string_view field);

}  // namespace kelvora::recording
