// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace kelvora::recording {

/// A file, pipe or device that is read from front to back.
class InputFile {
public:
    /// \param on_signal  Called when a signal arrives while the file is waited for. Gives up by
    ///     throwing; otherwise the wait goes on.
    /// \throws RecordingError  if it cannot be opened or is a directory.
    explicit InputFile(const std::filesystem::path& path, std::function<void()> on_signal = {});
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Reads up to `size` bytes to `buffer`; waits until there is at least one.
    ///
    /// \return Number of bytes read; 0 at the end.
    /// \throws RecordingError  if reading fails.
    std::size_t read(char* buffer, std::size_t size);

    /// Path as it was given, for messages.
    const std::string& name() const { return file_name; }

    /// Size in bytes; 0 if it is not known, as that of a pipe.
    std::uint64_t size() const { return file_size; }

private:
    std::string file_name;
    std::function<void()> on_signal;
    int descriptor;
    std::uint64_t file_size = 0;
};

}  // namespace kelvora::recording
