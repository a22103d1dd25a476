// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora::recording {

/// How a recording stores its events.
enum class Format {
    Records,  ///< Packed little-endian records of 16 bytes: u64 time in microseconds, u16 x, u16 y, u8
              ///< polarity, 3 zero bytes. No header.
    Text,     ///< One event per line, see `TextLayout`.
    Evt2,     ///< Header of `%` lines, then 32-bit words with 34 bits of time.
    Evt3      ///< Header of `%` lines, then 16-bit words with 24 bits of time, rows and vectors.
};

/// "records", "text", "evt2" or "evt3".
std::string toString(Format format);

/// The inverse of `toString`; nothing if there is no such format.
std::optional<Format> formatFromString(std::string_view name);

/// The format for writing a file with this name: `.bin` holds records, `.txt` and `.csv` text,
/// `.raw` and `.evt3` EVT3, `.evt2` and `.evt2.raw` EVT2. Case is ignored.
///
/// Names are not used for reading, which detects the format by content, see `detectFormat`.
///
/// \throws RecordingError  for other names.
Format formatFromExtension(const std::filesystem::path& path);

}  // namespace kelvora::recording
