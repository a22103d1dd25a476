// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "recording/bytes.hpp"
#include "recording/sensor_size.hpp"
#include "recording/text_layout.hpp"

namespace kelvora::recording {

/// What stands before the first event of a text recording: lines that are blank or comments, the
/// size of the sensor, the names of the columns. All may be missing.
struct TextHeader {
    std::size_t length = 0;   ///< Bytes up to the line of the first event.
    std::uint64_t lines = 0;  ///< Lines up to that one.
    std::optional<SensorSize> sensor_size;
    TextLayout layout;  ///< What was given, completed by what the header says.
};

/// Reads the header at the front of `bytes`, which end at the end of a line or of the recording.
///
/// Names of columns are t, ts, time and timestamp (also with a unit, as in `t_us`), x, y, p, pol,
/// polarity and on, in upper or lower case. A comment that consists of such names counts as well.
///
/// \param given  What the user said, which takes precedence.
/// \throws RecordingError  for names that are not understood, and for an impossible size.
TextHeader parseTextHeader(Bytes bytes, const TextLayout& given, const std::string& file);

/// Whether `bytes`, the front of a file, are printable text whose first line that is no comment
/// begins with a number or looks like names of columns.
bool looksLikeTextRecording(Bytes bytes);

}  // namespace kelvora::recording
