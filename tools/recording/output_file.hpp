// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "recording/bytes.hpp"

namespace kelvora::recording {

/// A file that is written from front to back, or standard output where the path is "-". An existing
/// file is replaced.
class OutputFile {
public:
    /// \throws RecordingError  if it cannot be created.
    explicit OutputFile(const std::filesystem::path& path);

    /// Closes the file if `close` was not called; errors are then lost.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// \throws RecordingError  if not all bytes can be written, as on a full disk.
    void write(Bytes bytes);

    /// Does nothing if the file is closed already.
    ///
    /// \throws RecordingError  if the system reports an error that it kept until now.
    void close();

    /// Path as it was given, for messages.
    const std::string& name() const { return file_name; }

private:
    std::string file_name;
    int descriptor;
};

}  // namespace kelvora::recording
