// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kelvora/recording/sensor_size.hpp"
#include "recording/coding/bytes.hpp"
#include "recording/coding/format.hpp"

namespace kelvora::recording {

/// The contents of the header of an EVT recording.
///
/// A header is a run of lines of the form "% key value". It may end in a line "% end".
struct EvtHeader {
    std::size_t length = 0;  ///< Bytes before the first word; 0 without a header.
    std::string
        evt_version;  ///< "2", "3", "2.1", ... from "% evt 3.0" or "% format EVT3;..."; or empty.
    std::optional<SensorSize>
        sensor_size;  ///< From "% geometry 640x480" or "% format ...;height=480;width=640".
};

/// Reads the header at the front of `bytes`.
///
/// Only lines of printable ASCII characters that begin with "% " and end with a newline belong to
/// the header: without "% end", the first word may begin with the byte of `%` by chance.
EvtHeader parseEvtHeader(Bytes bytes);

/// Reads the header of a recording that is to be decoded as this version.
///
/// \throws RecordingError  if the header states another version or does not end.
EvtHeader openEvtHeader(const RecordingStart& start, std::string_view version);

/// Whether there is a decoder for this version.
bool isReadEvtVersion(std::string_view version);

/// The problem of a recording of a version that is not read, such as "4".
std::string problemOfEvtVersion(std::string_view version);

/// The remedy for such a recording.
inline constexpr const char* kConvertEvt = "convert it to EVT 2 or EVT 3";

/// A header for a recording of this EVT version, `% end` included.
std::string evtHeader(int version, const SensorSize& sensor_size);

/// Throws if `rest`, which an EVT decoder left over at byte `position` of the file, is not empty.
///
/// \throws RecordingError  with the message that the recording ends in the middle of a word.
void refuseEndInsideWord(const std::string& file, std::uint64_t position, Bytes rest);

}  // namespace kelvora::recording
