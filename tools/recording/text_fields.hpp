// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace kelvora::recording {

/// Longest line of a text recording, in bytes. What is longer is no text.
inline constexpr std::size_t kMaxTextLine = 4096;

/// Blanks within a line; the carriage return of `\r\n` is one of them.
inline bool isTextBlank(char character) {
    return character == ' ' || character == '\t' || character == '\r';
}

/// The separators of which at most one stands between two fields.
inline bool isTextSeparator(char character) {
    return character == ',' || character == ';';
}

inline void skipTextBlanks(std::string_view& text) {
    while (!text.empty() && isTextBlank(text.front())) {
        text.remove_prefix(1);
    }
}

/// Whether a line holds no fields: it is blank, or begins with `#`.
inline bool isTextComment(std::string_view line) {
    skipTextBlanks(line);
    return line.empty() || line.front() == '#';
}

/// Takes the next field off the front of a line; nothing at its end.
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
