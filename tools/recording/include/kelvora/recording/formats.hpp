// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora::recording {

/// Names of the formats that `openRecording` reads, such as "evt3".
std::vector<std::string> readableFormats();

/// Names of the formats that `createRecording` writes.
std::vector<std::string> writableFormats();

/// Name of the format for writing a file with this name: `.bin` holds records, `.txt` and `.csv`
/// text, `.raw` and `.evt3` EVT3, `.evt2` and `.evt2.raw` EVT2. Case is ignored.
///
/// Names of files are not used for reading: `openRecording` detects the format by content.
///
/// \throws RecordingError  for other names.
std::string formatFromExtension(const std::filesystem::path& path);

}  // namespace kelvora::recording
