// SPDX-License-Identifier: MIT
#include "scoring/table_reader.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <unordered_set>
#include <utility>

#include "kelvora/recording/recording_error.hpp"
#include "recording/coding/in_quotes.hpp"

namespace kelvora::scoring {
namespace {

constexpr std::size_t kBufferSize = 65536;
constexpr std::size_t kMaxLine = 65536;
constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutBlanks(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

void split(std::string_view line, std::vector<std::string>& fields) {
    fields.clear();
    std::size_t begin = 0;
    while (begin != std::string_view::npos) {
        const std::size_t comma = line.find(',', begin);
        fields.emplace_back(withoutBlanks(line.substr(begin, comma - begin)));
        begin = comma == std::string_view::npos ? comma : comma + 1;
    }
}

/// Lists and objects are not written out: they may be nested deeper than the stack.
std::string textOf(const nlohmann::json& value) {
    if (value.is_structured()) {
        return value.is_array() ? "[...]" : "{...}";
    }
    return value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

TableReader::TableReader(const std::filesystem::path& path,
                         const std::vector<std::string>& required,
                         const std::function<void()>& check)
    : check_reading(check ? check : [] {}), file(path, check) {
    if (!nextLine()) {
        throw recording::RecordingError(recording::ErrorKind::Damaged, file.name(), "is empty", {},
                                        "give a CSV file with a header line, or JSON lines");
    }
    readNames();
    requireColumns(required);
}

bool TableReader::has(std::string_view column) const {
    return std::find(names.begin(), names.end(), column) != names.end();
}

bool TableReader::next() {
    if (has_row) {
        has_row = false;
        return true;
    }
    if (!nextLine()) {
        return false;
    }
    if (is_json) {
        readJsonRow();
    } else {
        readCsvRow();
    }
    return true;
}

const std::string& TableReader::text(std::string_view column) const {
    const auto found = std::find(names.begin(), names.end(), column);
    return fields.at(static_cast<std::size_t>(found - names.begin()));
}

double TableReader::number(std::string_view column) const {
    const auto value = parse<double>(column, "a number");
    if (!std::isfinite(value)) {
        refuseField(column, "a number");
    }
    return value;
}

std::int64_t TableReader::wholeNumber(std::string_view column) const {
    return parse<std::int64_t>(column, "a whole number");
}

std::uint64_t TableReader::countingNumber(std::string_view column) const {
    return parse<std::uint64_t>(column, "a whole number of at least 0");
}

void TableReader::refuse(const std::string& problem, const std::string& remedy) const {
    throw recording::RecordingError(recording::ErrorKind::Damaged, file.name(), problem,
                                    {recording::ErrorPlace::Unit::Line, line_number}, remedy);
}

void TableReader::refuseField(std::string_view column, const std::string& expected) const {
    refuse(fmt::format("has {} = {}, which is not {}", column, recording::inQuotes(text(column)),
                       expected),
           "correct the line");
}

/// Moves to the next line that is not blank.
bool TableReader::nextLine() {
    do {
        std::size_t end = buffer.find('\n', buffer_position);
        while (end == std::string::npos && fillBuffer()) {
            end = buffer.find('\n', buffer_position);
        }
        if (end == std::string::npos && buffer_position == buffer.size()) {
            return false;
        }
        ++line_number;
        line =
            withoutBlanks(std::string_view(buffer).substr(buffer_position, end - buffer_position));
        buffer_position = end == std::string::npos ? buffer.size() : end + 1;
        if (line_number == 1 && line.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
            line.erase(0, kByteOrderMark.size());
        }
    } while (line.empty());
    return true;
}

/// Appends more of the file to the rest of the buffer.
bool TableReader::fillBuffer() {
    buffer.erase(0, buffer_position);
    buffer_position = 0;
    if (buffer.size() > kMaxLine) {
        ++line_number;
        refuse(fmt::format("has a line of more than {} bytes", kMaxLine),
               "give a CSV file with a header line, or JSON lines");
    }
    check_reading();
    const std::size_t left = buffer.size();
    buffer.resize(left + kBufferSize);
    const std::size_t count = file.read(buffer.data() + left, kBufferSize);
    buffer.resize(left + count);
    return count > 0;
}

void TableReader::readNames() {
    is_json = line.front() == '{';
    if (!is_json) {
        split(line, names);
        return;
    }
    const auto row = nlohmann::ordered_json::parse(line, nullptr, false);
    if (row.is_object()) {
        for (const auto& member : row.items()) {
            names.push_back(member.key());
        }
    }
    readJsonRow();
    has_row = true;
}

void TableReader::requireColumns(const std::vector<std::string>& required) const {
    for (const std::string& name : required) {
        if (!has(name)) {
            refuse("has no column " + name,
                   is_json ? "give each row a member of this name"
                           : "name the columns in the first line, with commas in between");
        }
    }
    std::unordered_set<std::string_view> seen;
    for (const std::string& name : names) {
        if (!seen.insert(name).second) {
            refuse("has two columns " + recording::inQuotes(name), "rename one of them");
        }
    }
}

void TableReader::readCsvRow() {
    split(line, fields);
    if (fields.size() != names.size()) {
        refuse(fmt::format("has {} fields instead of {}", fields.size(), names.size()),
               "give each row as many fields as the header");
    }
}

void TableReader::readJsonRow() {
    const auto row = nlohmann::json::parse(line, nullptr, false);
    if (!row.is_object()) {
        refuse("has a line that is not a JSON object", "give one object per line");
    }
    fields.clear();
    for (const std::string& name : names) {
        const auto member = row.find(name);
        if (member == row.end()) {
            refuse("has a row without " + recording::inQuotes(name),
                   "give each row the members of the first");
        }
        fields.push_back(textOf(*member));
    }
}

template <class Number>
Number TableReader::parse(std::string_view column, const char* expected) const {
    const std::string& field = text(column);
    Number value{};
    const char* const end = field.data() + field.size();
    const auto [rest, error] = std::from_chars(field.data(), end, value);
    if (error != std::errc() || rest != end) {
        refuseField(column, expected);
    }
    return value;
}

}  // namespace kelvora::scoring
