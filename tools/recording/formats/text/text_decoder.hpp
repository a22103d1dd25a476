// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "kelvora/recording/recording_error.hpp"
#include "kelvora/recording/text_layout.hpp"
#include "recording/coding/event_decoder.hpp"

namespace kelvora::recording {

/// Decodes a text recording after its header, see `TextLayout`.
///
/// Coordinates and polarities may be written as decimals (`96.0`, `9.6e+01`) if they are whole.
///
/// Defects are lines without exactly four numbers, times that are negative or after `kLatestTime`,
/// coordinates outside 0 to 65535, polarities other than 1, 0 and -1, lines longer than
/// `kMaxTextLine`, and a time with a decimal point if the first event has none and therefore set
/// the unit to microseconds.
class TextDecoder : public EventDecoder {
public:
    /// \param layout        Missing parts are detected as described for `TextLayout`.
    /// \param header_lines  Number of lines before the first line to decode.
    TextDecoder(std::string file, const TextLayout& layout, std::uint64_t header_lines);

    std::size_t decode(Bytes bytes, std::vector<Event2D>& events) override;
    void finish(Bytes rest, std::vector<Event2D>& events) override;

private:
    void decodeLine(std::string_view line, std::vector<Event2D>& events);
    void decodeField(TextColumn column, std::string_view field);
    std::uint64_t decodeTime(std::string_view field);
    std::uint16_t decodeCoordinate(std::string_view name, std::string_view field) const;
    unsigned char decodePolarity(std::string_view field) const;
    void checkLength(std::size_t line_length) const;
    [[noreturn]] void refuse(const std::string& problem, const Remedy& remedy) const;

    std::string file;
    TextColumns columns;
    std::optional<TimeUnit> time_unit;
    bool unit_is_assumed = false;
    std::uint64_t line_number;  // of the line being decoded, counted from 1
    Event2D event;              // reused: copying an event is much cheaper than constructing one
};

}  // namespace kelvora::recording
