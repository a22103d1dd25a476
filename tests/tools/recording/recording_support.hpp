// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "kelvora/events.hpp"
#include "recording/bytes.hpp"
#include "recording/event_decoder.hpp"
#include "recording/event_reader.hpp"

namespace kelvora {

bool operator==(const Event2D& left, const Event2D& right);
std::ostream& operator<<(std::ostream& out, const Event2D& event);

namespace recording {

/// In the order in which the columns of a text recording stand, unlike the constructor.
Event2D eventAt(std::uint64_t time, int x, int y, int polarity);

/// Events of a made-up recording, in order of time: single ones, rows of neighbours and pauses.
std::vector<Event2D> randomRecording(unsigned seed, std::size_t count, std::uint64_t longest_pause);

std::string recordBytes(std::uint64_t time, int x, int y, int polarity);
std::string words16(const std::vector<std::uint16_t>& words);
std::string words32(const std::vector<std::uint32_t>& words);

/// What came of decoding or reading: the events, then the message of the error that ended it, if
/// one did.
struct Outcome {
    std::vector<Event2D> events;
    std::string error;
};

/// Gives `bytes` to a decoder as a reader does that has read them in two pieces, cut at `cut`.
Outcome decode(EventDecoder& decoder, Bytes bytes, std::size_t cut = 0);

/// Opens and reads a recording to its end or to the first error.
Outcome readRecording(const std::filesystem::path& path, const ReadOptions& options = {});

}  // namespace recording
}  // namespace kelvora
