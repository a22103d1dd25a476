// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "recording/coding/bytes.hpp"

namespace kelvora::recording {

/// Writes a file from front to back, or standard output if the path is "-". An existing file is
/// replaced.
class OutputFile {
public:
    /// \throws RecordingError  if it cannot be created.
    explicit OutputFile(const std::filesystem::path& path);

    /// Closes the file if `close` was not called. Errors are then ignored.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// \throws RecordingError  if not all bytes can be written, as on a full disk.
    void write(Bytes bytes);

    /// Does nothing if the file is already closed.
    ///
    /// \throws RecordingError  if the system reports a delayed write error.
    void close();

    /// The path as given by the user, for messages.
    const std::string& name() const { return file_name; }

private:
    std::string file_name;
    int descriptor;
};

}  // namespace kelvora::recording
