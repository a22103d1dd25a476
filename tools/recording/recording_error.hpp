// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
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

    const std::string& file() const { return parts->file; }
    const std::string& problem() const { return parts->problem; }
    const std::string& where() const { return parts->where; }
    const std::string& remedy() const { return parts->remedy; }

private:
    struct Parts {
        std::string file;
        std::string problem;
        std::string where;
        std::string remedy;
    };

    std::shared_ptr<const Parts> parts;  ///< Shared, as copying an exception must not throw.
};

/// A field of a file as it may stand in a message: the file may hold anything, the message is one
/// short line.
std::string inQuotes(std::string_view field);

}  // namespace kelvora::recording
