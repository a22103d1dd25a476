// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "kelvora/recording/sensor_size.hpp"
#include "kelvora/recording/text_layout.hpp"
#include "recording/coding/bytes.hpp"

namespace kelvora::recording {

/// The lines before the first event of a text recording: blank lines, comments, the size of the
/// sensor and the names of the columns. All are optional.
struct TextHeader {
    std::size_t length = 0;   ///< Number of bytes before the line of the first event.
    std::uint64_t lines = 0;  ///< Number of lines before that line.
    std::optional<SensorSize> sensor_size;
    TextLayout layout;  ///< The given layout, completed from the header.
};

/// Reads the header at the front of `bytes`, which must end at the end of a line or of the
/// recording.
///
/// Column names are t, ts, time and timestamp (also with a unit, as in `t_us`), x, y, p, pol,
/// polarity and on, in upper or lower case. A comment that consists of such names also counts as a
/// header.
///
/// \param given  The layout given by the user, which takes precedence.
/// \throws RecordingError  for unknown names and for an invalid size.
TextHeader parseTextHeader(Bytes bytes, const TextLayout& given, const std::string& file);

/// Whether `bytes`, the front of a file, are printable text whose first line other than a comment
/// begins with a number or looks like column names.
bool looksLikeTextRecording(Bytes bytes);

}  // namespace kelvora::recording
