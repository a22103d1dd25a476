// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "kelvora/recording/export.hpp"

namespace kelvora::recording {

/// Names of the formats that `openRecording` reads.
///
/// \return For example, "evt3". The order is fixed.
KELVORA_RECORDING_EXPORT std::vector<std::string> readableFormats();

/// Names of the formats that `createRecording` writes.
///
/// \return A part of the `readableFormats`.
KELVORA_RECORDING_EXPORT std::vector<std::string> writableFormats();

/// Name of the format for writing a file with this name: `.bin` holds records, `.txt` and `.csv`
/// text, `.raw` and `.evt3` EVT3, `.evt2` and `.evt2.raw` EVT2. Case is ignored.
///
/// Names of files are not used for reading: `openRecording` detects the format by content.
///
/// \param path  Name of the file. The file is not accessed.
/// \return One of the `writableFormats`.
/// \throws RecordingError  for other names.
KELVORA_RECORDING_EXPORT std::string formatFromExtension(const std::filesystem::path& path);

}  // namespace kelvora::recording
