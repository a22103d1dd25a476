// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "recording/coding/bytes.hpp"
#include "recording/input_file.hpp"

namespace kelvora::recording {

/// The bytes of a file that have been read but not decoded yet.
class InputBuffer {
public:
    /// \throws RecordingError  if the file cannot be opened.
    InputBuffer(const std::filesystem::path& path, const std::function<void()>& on_signal);

    /// Bytes not skipped yet. Invalidated by the calls below.
    Bytes unread() const { return {buffer.data() + begin, end - begin}; }

    /// Skips bytes at the front of `unread`.
    void skip(std::size_t count) {
        begin += count;
        skipped += count;
    }

    /// Reads the available bytes. A buffer that is full grows, up to `kMaxItemBytes`.
    ///
    /// \return False at the end of the file.
    /// \throws RecordingError  if reading fails, or if the full buffer must not grow.
    bool fill();

    /// Reads until `count` bytes are available; false if the file has fewer.
    bool fillTo(std::size_t count);

    const InputFile& source() const { return file; }

    /// Number of bytes skipped.
    std::uint64_t position() const { return skipped; }

private:
    void makeRoom();

    InputFile file;
    std::vector<char> buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::uint64_t skipped = 0;
};

}  // namespace kelvora::recording
