// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// All formats, from the weakest signature to the strongest. `detectFormat` begins at the end.
const std::vector<Format>& formatTable();

/// The readable or writable format of this name; null if there is none.
const Format* findFormat(std::string_view name);

/// The format of a recording, by its content.
///
/// \param head  The first bytes of the recording, up to 64 KiB.
/// \param file  For messages.
/// \throws RecordingError  if the format is unknown, or recognised but not supported. The message
///     then names it.
const Format& detectFormat(Bytes head, const std::string& file);

}  // namespace kelvora::recording
