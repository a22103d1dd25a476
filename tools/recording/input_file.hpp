// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace kelvora::recording {

/// Reads a file, pipe or device from front to back.
class InputFile {
public:
    /// \param on_signal  Called when a signal arrives during a wait for the file. May throw to end
    ///     the wait; otherwise the wait continues.
    /// \throws RecordingError  if it cannot be opened or is a directory.
    explicit InputFile(const std::filesystem::path& path, std::function<void()> on_signal = {});
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// Reads up to `size` bytes into `buffer`. Waits until at least one is available.
    ///
    /// \return Number of bytes read; 0 at the end.
    /// \throws RecordingError  if reading fails.
    std::size_t read(char* buffer, std::size_t size);

    /// The path as given by the user, for messages.
    const std::string& name() const { return file_name; }

    /// Size in bytes; 0 if unknown, as for a pipe.
    std::uint64_t size() const { return file_size; }

private:
    std::string file_name;
    std::function<void()> on_signal;
    int descriptor;
    std::uint64_t file_size = 0;
};

}  // namespace kelvora::recording
