// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace kelvora::recording {

/// Thrown for a recording that cannot be read or written.
///
/// The message is one line that needs no context: `FILE: problem, where, what to do`.
class RecordingError : public std::runtime_error {
public:
    /// \param file  Path of the recording, as the user gave it.
    /// \param problem  The problem, as a sentence whose subject is the file: "is empty".
    /// \param where  Byte or line; empty for the whole file.
    /// \param remedy  How the user can fix the problem.
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

    std::shared_ptr<const Parts> parts;  ///< Shared, because copying an exception must not throw.
};

/// Quotes a field of a file for a message. The field may contain anything; the result is short and
/// on one line.
std::string inQuotes(std::string_view field);

}  // namespace kelvora::recording
