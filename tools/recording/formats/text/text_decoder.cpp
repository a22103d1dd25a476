// SPDX-License-Identifier: MIT
#include "recording/formats/text/text_decoder.hpp"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

#include "kelvora/recording/recording_error.hpp"
#include "recording/coding/in_quotes.hpp"
#include "recording/formats/text/decimal_time.hpp"
#include "recording/formats/text/text_fields.hpp"

namespace kelvora::recording {
namespace {

std::string withoutPlus(std::string_view field) {
    return std::string(field.substr(!field.empty() && field.front() == '+' ? 1 : 0));
}

// Parses a whole number, which may be written as 96, +96, 96.0 or 9.6e+01.
std::optional<int> wholeNumber(std::string_view field) {
    int number = 0;
    const char* const end = field.data() + field.size();
    const auto result = std::from_chars(field.data(), end, number);
    if (result.ec == std::errc() && result.ptr == end) {
        return number;
    }
    const std::string unsigned_field = withoutPlus(field);
    const char* const unsigned_end = unsigned_field.data() + unsigned_field.size();
    double value = 0.0;
    const auto slow_result = std::from_chars(unsigned_field.data(), unsigned_end, value);
    const bool is_whole = slow_result.ec == std::errc() && slow_result.ptr == unsigned_end &&
                          std::abs(value) <= std::numeric_limits<int>::max() &&
                          std::trunc(value) == value;
    return is_whole ? std::optional(static_cast<int>(value)) : std::nullopt;
}

bool isDecimal(std::string_view number) {
    return number.find_first_of(".eE") != std::string_view::npos;
}

}  // namespace

TextDecoder::TextDecoder(std::string file_, const TextLayout& layout, std::uint64_t header_lines)
    : file(std::move(file_)),
      columns(layout.columns.value_or(kDefaultTextColumns)),
      time_unit(layout.time_unit),
      line_number(header_lines) {}

std::size_t TextDecoder::decode(Bytes bytes, std::vector<Event2D>& events) {
    std::size_t used = 0;
    while (events.size() < kMaxEventsPerChunk) {
        const std::size_t newline = bytes.find('\n', used);
        if (newline == Bytes::npos) {
            checkLength(bytes.size() - used);
            break;
        }
        decodeLine(bytes.substr(used, newline - used), events);
        used = newline + 1;
    }
    return used;
}

void TextDecoder::finish(Bytes rest, std::vector<Event2D>& events) {
    if (!rest.empty()) {
        decodeLine(rest, events);
    }
}

void TextDecoder::decodeLine(std::string_view line, std::vector<Event2D>& events) {
    checkLength(line.size());
    ++line_number;
    if (isTextComment(line)) {
        return;
    }
    for (const TextColumn column : columns) {
        const auto field = takeTextField(line);
        if (!field) {
            refuse("has fewer than 4 columns", "write time, x, y and polarity in each line");
        }
        decodeField(column, *field);
    }
    if (takeTextField(line)) {
        refuse("has more than 4 columns", "write only time, x, y and polarity in each line");
    }
    events.push_back(event);
}

void TextDecoder::decodeField(TextColumn column, std::string_view field) {
    switch (column) {
        case TextColumn::Time:
            event.timestamp = decodeTime(field);
            break;
        case TextColumn::X:
            event.x = decodeCoordinate("x", field);
            break;
        case TextColumn::Y:
            event.y = decodeCoordinate("y", field);
            break;
        case TextColumn::Polarity:
            event.polarity = decodePolarity(field);
            break;
    }
}

std::uint64_t TextDecoder::decodeTime(std::string_view field) {
    if (!time_unit) {
        time_unit = isDecimal(field) ? TimeUnit::Seconds : TimeUnit::Microseconds;
        unit_is_assumed = true;
    } else if (unit_is_assumed && *time_unit == TimeUnit::Microseconds && isDecimal(field)) {
        refuse("has the time " + inQuotes(field) +
                   " with a decimal point, but earlier times are whole numbers",
               {"give the unit with {}", Setting::TimeUnit});
    }
    const auto microseconds = microsecondsFromDecimal(field, *time_unit);
    if (!microseconds) {
        refuse("has the time " + inQuotes(field) + ", which is negative, too large or not a number",
               {"check the line and the order of the columns ({})", Setting::Columns});
    }
    return *microseconds;
}

std::uint16_t TextDecoder::decodeCoordinate(std::string_view name, std::string_view field) const {
    const auto number = wholeNumber(field);
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint16_t>::max()) {
        refuse(fmt::format("has {} = {}, which is not a whole number from 0 to 65535", name,
                           inQuotes(field)),
               {"check the line and the order of the columns ({})", Setting::Columns});
    }
    return static_cast<std::uint16_t>(*number);
}

unsigned char TextDecoder::decodePolarity(std::string_view field) const {
    const auto number = wholeNumber(field);
    if (!number || *number < -1 || *number > 1) {
        refuse("has the polarity " + inQuotes(field) + " instead of 0, 1 or -1",
               {"give the order of the columns with {}", Setting::Columns});
    }
    return *number == 1 ? 1 : 0;
}

void TextDecoder::checkLength(std::size_t line_length) const {
    if (line_length > kMaxTextLine) {
        throw RecordingError(ErrorKind::Damaged, file,
                             fmt::format("has a line of more than {} characters", kMaxTextLine),
                             {ErrorPlace::Unit::Line, line_number + 1},
                             Remedy("check that it is a text recording, or give its format with {}",
                                    Setting::Format));
    }
}

void TextDecoder::refuse(const std::string& problem, const Remedy& remedy) const {
    throw RecordingError(ErrorKind::Damaged, file, problem, {ErrorPlace::Unit::Line, line_number},
                         remedy);
}

}  // namespace kelvora::recording
