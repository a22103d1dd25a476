// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kelvora::recording {

/// Longest line of a text recording, in bytes. A file with a longer line is not treated as text.
inline constexpr std::size_t kMaxTextLine = 4096;

/// Blanks within a line, including the carriage return of `\r\n`.
inline bool isTextBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r';
}

/// Separators that occur at most once between two fields.
inline bool isTextSeparator(char character) {
    return character == ',' || character == ';';
}

inline void skipTextBlanks(std::string_view& text) {
    while (!text.empty() && isTextBlank(text.front())) {
        text.remove_prefix(1);
    }
}

/// Whether a line has no fields, because it is blank or begins with `#`.
inline bool isTextComment(std::string_view line) {
    skipTextBlanks(line);
    return line.empty() || line.front() == '#';
}

/// Removes the next field from the front of a line and returns it; empty at the end.
///
/// The field is empty where two commas follow each other. A comma at the end of a line is ignored.
inline std::optional<std::string_view> takeTextField(std::string_view& rest) {
    skipTextBlanks(rest);
    if (rest.empty()) {
        return std::nullopt;
    }
    std::size_t length = 0;
    while (length < rest.size() && !isTextBlank(rest[length]) && !isTextSeparator(rest[length])) {
        ++length;
    }
    const std::string_view field = rest.substr(0, length);
    rest.remove_prefix(length);
    skipTextBlanks(rest);
    if (!rest.empty() && isTextSeparator(rest.front())) {
        rest.remove_prefix(1);
    }
    return field;
}

}  // namespace kelvora::recording
