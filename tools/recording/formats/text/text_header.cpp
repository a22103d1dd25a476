// SPDX-License-Identifier: MIT
#include "recording/formats/text/text_header.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <string_view>
#include <vector>

#include "kelvora/recording/recording_error.hpp"
#include "recording/formats/text/text_fields.hpp"

namespace kelvora::recording {
namespace {

constexpr std::string_view kByteOrderMark =
    "\xEF\xBB\xBF";  // byte order mark that some editors write

std::vector<std::string_view> splitFields(std::string_view line) {
    std::vector<std::string_view> fields;
    while (const auto field = takeTextField(line)) {
        fields.push_back(*field);
    }
    return fields;
}

bool beginsWithLetter(std::string_view field) {
    return !field.empty() && std::isalpha(static_cast<unsigned char>(field.front())) != 0;
}

bool areNames(const std::vector<std::string_view>& fields) {
    return !fields.empty() && std::all_of(fields.begin(), fields.end(), beginsWithLetter);
}

std::optional<long long> wholeNumber(std::string_view field) {
    long long number = 0;
    const char* const end = field.data() + field.size();
    const auto result = std::from_chars(field.data(), end, number);
    const bool is_whole = result.ec == std::errc() && result.ptr == end;
    return is_whole ? std::optional(number) : std::nullopt;
}

std::optional<TextColumn> columnFromName(std::string_view name) {
    if (name == "t" || name == "ts" || name == "time" || name == "timestamp") {
        return TextColumn::Time;
    }
    if (name == "x") {
        return TextColumn::X;
    }
    if (name == "y") {
        return TextColumn::Y;
    }
    if (name == "p" || name == "pol" || name == "polarity" || name == "on") {
        return TextColumn::Polarity;
    }
    return std::nullopt;
}

// The layout given by a line of names; empty if the line is not one.
std::optional<TextLayout> layoutFromNames(const std::vector<std::string_view>& fields) {
    TextLayout layout;
    std::string letters;  // the order for `textColumnsFromString`, which also rejects duplicates
    for (const std::string_view field : fields) {
        std::string name(field);
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) {
            return static_cast<char>(std::tolower(letter));
        });
        const std::size_t underscore = name.find('_');
        const auto column = columnFromName(std::string_view(name).substr(0, underscore));
        if (underscore != std::string::npos) {
            layout.time_unit = timeUnitFromString(std::string_view(name).substr(underscore + 1));
        }
        const bool is_understood =
            underscore == std::string::npos || (column == TextColumn::Time && layout.time_unit);
        if (!column || !is_understood) {
            return std::nullopt;
        }
        letters += "txyp"[static_cast<std::size_t>(*column)];
    }
    layout.columns = textColumnsFromString(letters);
    return layout.columns ? std::optional(layout) : std::nullopt;
}

void complete(TextLayout& layout, const TextLayout& found) {
    // A unit in a column name applies even if the user gave the order.
    layout.time_unit = layout.time_unit ? layout.time_unit : found.time_unit;
    layout.columns = layout.columns ? layout.columns : found.columns;
}

class HeaderParser {
public:
    HeaderParser(const TextLayout& given, const std::string& file_) : file(file_) {
        header.layout = given;
    }

    // Adds a line to the header, unless it is the first event.
    bool take(std::string_view line) {
        if (isTextComment(line)) {
            takeComment(line);
            return true;
        }
        const auto fields = splitFields(line);
        if (fields.size() == 2 && wholeNumber(fields[0]) && wholeNumber(fields[1])) {
            takeSize(fields);
            return true;
        }
        if (areNames(fields)) {
            takeNames(fields);
            return true;
        }
        return false;
    }

    TextHeader header;

private:
    void takeComment(std::string_view line) {
        const std::string_view words = line.substr(std::min(line.find('#') + 1, line.size()));
        if (const auto layout = layoutFromNames(splitFields(words))) {
            complete(header.layout, *layout);
        }
    }

    void takeSize(const std::vector<std::string_view>& fields) {
        header.sensor_size = sensorSizeFromString(fmt::format("{}x{}", fields[0], fields[1]));
        if (!header.sensor_size) {
            refuse(fmt::format("states the invalid sensor size {} x {}", fields[0], fields[1]),
                   "correct the line: width and height in pixels");
        }
    }

    void takeNames(const std::vector<std::string_view>& fields) {
        const auto layout = layoutFromNames(fields);
        if (!layout && !header.layout.columns) {
            refuse("names columns other than t, x, y and p",
                   {"correct the line or give the order of the columns with {}", Setting::Columns});
        }
        if (layout) {
            complete(header.layout, *layout);
        }
    }

    [[noreturn]] void refuse(const std::string& problem, const Remedy& remedy) const {
        throw RecordingError(ErrorKind::Damaged, file, problem,
                             {ErrorPlace::Unit::Line, header.lines + 1}, remedy);
    }

    const std::string& file;
};

// The line at `start`, without its newline.
std::string_view lineAt(Bytes bytes, std::size_t start) {
    return bytes.substr(start, bytes.find('\n', start) - start);
}

std::size_t lengthOfByteOrderMark(Bytes bytes) {
    return bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark ? kByteOrderMark.size() : 0;
}

bool isTextCharacter(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte >= ' ' ? byte != 0x7F : (byte == '\t' || byte == '\r' || byte == '\n');
}

bool looksLikeEventOrNames(std::string_view line) {
    const auto fields = splitFields(line);
    const char first = fields.front().empty() ? ' ' : fields.front().front();
    const bool is_number = std::isdigit(static_cast<unsigned char>(first)) != 0 || first == '.' ||
                           first == '-' || first == '+';
    return is_number || layoutFromNames(fields).has_value();
}

}  // namespace

TextHeader parseTextHeader(Bytes bytes, const TextLayout& given, const std::string& file) {
    HeaderParser parser(given, file);
    std::size_t position = lengthOfByteOrderMark(bytes);
    while (position < bytes.size()) {
        const std::string_view line = lineAt(bytes, position);
        if (!parser.take(line)) {
            break;
        }
        position = std::min(position + line.size() + 1, bytes.size());
        ++parser.header.lines;
    }
    parser.header.length = position;
    return parser.header;
}

bool looksLikeTextRecording(Bytes bytes) {
    if (!std::all_of(bytes.begin(), bytes.end(), isTextCharacter)) {
        return false;
    }
    std::size_t position = lengthOfByteOrderMark(bytes);
    while (position < bytes.size()) {
        const std::string_view line = lineAt(bytes, position);
        if (!isTextComment(line)) {
            return looksLikeEventOrNames(line);
        }
        position = std::min(position + line.size() + 1, bytes.size());
    }
    return false;
}

}  // namespace kelvora::recording
