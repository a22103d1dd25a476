// SPDX-License-Identifier: MIT
#include "recording/format.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <utility>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

constexpr std::array<std::pair<Format, std::string_view>, 4> kNames = {
    {{Format::Records, "records"},
     {Format::Text, "text"},
     {Format::Evt2, "evt2"},
     {Format::Evt3, "evt3"}}};

// The first match wins, so `.evt2.raw` must come before `.raw`.
constexpr std::array<std::pair<std::string_view, Format>, 7> kExtensions = {
    {{".bin", Format::Records},
     {".txt", Format::Text},
     {".csv", Format::Text},
     {".evt2", Format::Evt2},
     {".evt2.raw", Format::Evt2},
     {".evt3", Format::Evt3},
     {".raw", Format::Evt3}}};

bool endsWith(std::string_view text, std::string_view ending) {
    return text.size() >= ending.size() && text.substr(text.size() - ending.size()) == ending;
}

}  // namespace

std::string toString(Format format) {
    const auto* const entry =
        std::find_if(kNames.begin(), kNames.end(),
                     [format](const auto& candidate) { return candidate.first == format; });
    return std::string(entry->second);
}

std::optional<Format> formatFromString(std::string_view name) {
    for (const auto& [format, format_name] : kNames) {
        if (format_name == name) {
            return format;
        }
    }
    return std::nullopt;
}

Format formatFromExtension(const std::filesystem::path& path) {
    std::string name = path.filename().string();
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    for (const auto& [extension, format] : kExtensions) {
        if (endsWith(name, extension)) {
            return format;
        }
    }
    throw RecordingError(path.string(), "has a name without the extension of a supported format",
                         "", "use .bin (records), .txt or .csv (text), .evt2.raw or .evt3.raw");
}

}  // namespace kelvora::recording
