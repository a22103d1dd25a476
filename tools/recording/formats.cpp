// SPDX-License-Identifier: MIT
#include "kelvora/recording/formats.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <iterator>

#include "kelvora/recording/recording_error.hpp"
#include "recording/formats/format_table.hpp"

namespace kelvora::recording {
namespace {

bool endsWith(std::string_view text, std::string_view ending) {
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

template <class Condition>
std::vector<std::string> namesIf(const Condition& condition) {
    std::vector<std::string> names;
    for (const Format& format : formatTable()) {
        if (condition(format)) {
            names.push_back(format.name);
        }
    }
    return names;
}

[[noreturn]] void refuseName(const std::filesystem::path& path) {
    std::vector<std::string> proposals;
    for (const Format& format : formatTable()) {
        if (format.makeEncoder) {
            proposals.push_back(format.proposed_extensions);
        }
    }
    throw RecordingError(
        ErrorKind::UnusableFormat, path.string(),
        "has a name without the extension of a supported format", {},
        fmt::format("use {} or {}", fmt::join(proposals.begin(), std::prev(proposals.end()), ", "),
                    proposals.back()));
}

}  // namespace

std::vector<std::string> readableFormats() {
    return namesIf([](const Format& format) { return static_cast<bool>(format.open); });
}

std::vector<std::string> writableFormats() {
    return namesIf([](const Format& format) { return static_cast<bool>(format.makeEncoder); });
}

std::string formatFromExtension(const std::filesystem::path& path) {
    std::string name = path.filename().string();
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    const Format* found = nullptr;
    std::size_t longest = 0;
    for (const Format& format : formatTable()) {
        for (const std::string_view extension : format.extensions) {
            if (extension.size() > longest && endsWith(name, extension)) {
                found = &format;
                longest = extension.size();
            }
        }
    }
    if (found == nullptr) {
        refuseName(path);
    }
    return found->name;
}

}  // namespace kelvora::recording
