// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "recording/coding/bytes.hpp"
#include "recording/format.hpp"
#include "recording/formats/evt/evt_header.hpp"

namespace kelvora::recording {

/// Detects the format of a recording from its content.
///
/// EVT recordings are recognised by their header, text by printable characters and a first line
/// that looks like an event or a header, and records by zero padding and polarities of 0 and 1.
///
/// \param head  The first bytes of the recording, up to 64 KiB.
/// \param file  For messages.
/// \throws RecordingError  if the format is unknown, or recognised but not supported. The message
///     then names it.
Format detectFormat(Bytes head, const std::string& file);

/// The format that the header of an EVT recording names.
///
/// \throws RecordingError  if it names a version other than 2 and 3, or none.
Format formatFromHeader(const EvtHeader& header, const std::string& file);

}  // namespace kelvora::recording
