// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "kelvora/events.hpp"
#include "kelvora/recording/event_reader.hpp"
#include "recording/coding/bytes.hpp"
#include "recording/coding/event_decoder.hpp"

namespace kelvora {

bool operator==(const Event2D& left, const Event2D& right);
std::ostream& operator<<(std::ostream& out, const Event2D& event);

namespace recording {

/// Arguments are in the column order of a text recording, unlike the constructor's.
Event2D eventAt(std::uint64_t time, int x, int y, int polarity);

/// Events of an artificial recording in time order: single events, rows of neighbours and pauses.
std::vector<Event2D> randomRecording(unsigned seed, std::size_t count, std::uint64_t longest_pause);

std::string recordBytes(std::uint64_t time, int x, int y, int polarity);
std::string words16(const std::vector<std::uint16_t>& words);
std::string words32(const std::vector<std::uint32_t>& words);

/// The result of decoding or reading: the events, and the message of the error that ended it, if
/// any.
struct Outcome {
    std::vector<Event2D> events;
    std::string error;
};

/// Decodes `bytes` like a reader that received them in two pieces, cut at `cut`.
Outcome decode(EventDecoder& decoder, Bytes bytes, std::size_t cut = 0);

/// Opens and reads a recording to its end or to the first error.
Outcome readRecording(const std::filesystem::path& path, const ReadOptions& options = {});

}  // namespace recording
}  // namespace kelvora
