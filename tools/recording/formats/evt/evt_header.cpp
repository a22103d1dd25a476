// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt_header.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

constexpr std::string_view kLineStart = "% ";

// Half of the bytes that a reader gets to recognise a format.
constexpr std::size_t kMaxHeaderBytes = std::size_t{32} * 1024;

bool isHeaderCharacter(char character) {
    return (character >= ' ' && character <= '~') || character == '\t' || character == '\r';
}

// The first header line without its newline, or nothing.
std::optional<std::string_view> headerLine(Bytes bytes) {
    if (bytes.substr(0, kLineStart.size()) != kLineStart) {
        return std::nullopt;
    }
    const auto* const end = std::find_if_not(bytes.begin(), bytes.end(), isHeaderCharacter);
    if (end == bytes.end() || *end != '\n') {
        return std::nullopt;
    }
    return bytes.substr(0, static_cast<std::size_t>(end - bytes.begin()));
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r";
    const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// Splits `text` at the first `separator`: returns the part before it and leaves the rest in `text`.
std::string_view takeUntil(std::string_view& text, char separator) {
    const std::string_view part = text.substr(0, text.find(separator));
    text.remove_prefix(std::min(part.size() + 1, text.size()));
    return part;
}

// "3.0" -> "3", "21" -> "2.1"
std::string normalizedVersion(std::string_view version) {
    if (version.size() == 2) {
        return {version[0], '.', version[1]};
    }
    if (version.size() == 3 && version.substr(1) == ".0") {
        version.remove_suffix(2);
    }
    return std::string(version);
}

// EVT3;height=480;width=640
void parseFormat(std::string_view value, EvtHeader& header) {
    constexpr std::string_view kPrefix = "EVT";
    const std::string_view name = takeUntil(value, ';');
    if (name.substr(0, kPrefix.size()) == kPrefix) {
        header.evt_version = normalizedVersion(name.substr(kPrefix.size()));
    }
    std::string_view width;
    std::string_view height;
    while (!value.empty()) {
        std::string_view setting = takeUntil(value, ';');
        const std::string_view key = takeUntil(setting, '=');
        if (key == "width") {
            width = setting;
        } else if (key == "height") {
            height = setting;
        }
    }
    const auto size = sensorSizeFromString(fmt::format("{}x{}", width, height));
    header.sensor_size = size ? size : header.sensor_size;
}

void parseEntry(std::string_view key, std::string_view value, EvtHeader& header) {
    if (key == "evt") {
        header.evt_version = normalizedVersion(value);
    } else if (key == "format") {
        parseFormat(value, header);
    } else if (key == "geometry") {
        const auto size = sensorSizeFromString(value);
        header.sensor_size = size ? size : header.sensor_size;
    }
}

}  // namespace

EvtHeader parseEvtHeader(Bytes bytes) {
    EvtHeader header;
    while (const auto line = headerLine(bytes.substr(header.length))) {
        header.length += line->size() + 1;
        std::string_view entry = trimmed(line->substr(kLineStart.size()));
        const std::string_view key = takeUntil(entry, ' ');
        if (key == "end") {
            break;
        }
        parseEntry(key, trimmed(entry), header);
    }
    return header;
}

EvtHeader openEvtHeader(const RecordingStart& start, std::string_view version) {
    EvtHeader header = parseEvtHeader(start.head);
    if (!start.is_whole && header.length > kMaxHeaderBytes) {
        throw RecordingError(ErrorKind::Damaged, start.file, "has a header that does not end", {},
                             "check that it is an EVT recording");
    }
    const std::string& stated = header.evt_version;
    if (stated.empty() || stated == version) {
        return header;
    }
    if (!isReadEvtVersion(stated)) {
        throw RecordingError(ErrorKind::UnusableFormat, start.file, problemOfEvtVersion(stated), {},
                             kConvertEvt);
    }
    throw RecordingError(
        ErrorKind::UnusableFormat, start.file,
        fmt::format("is of format evt{} according to its header, not evt{}", stated, version), {},
        {"leave out {}", Setting::Format});
}

bool isReadEvtVersion(std::string_view version) {
    return version == "2" || version == "3";
}

std::string problemOfEvtVersion(std::string_view version) {
    return fmt::format("is an EVT {} recording, which is not supported", version);
}

std::string evtHeader(int version, const SensorSize& sensor_size) {
    return fmt::format(
        "% evt {0}.0\n"
        "% format EVT{0};height={2};width={1}\n"
        "% geometry {1}x{2}\n"
        "% end\n",
        version, sensor_size.width, sensor_size.height);
}

void refuseEndInsideWord(const std::string& file, std::uint64_t position, Bytes rest) {
    if (!rest.empty()) {
        throw RecordingError(ErrorKind::Damaged, file, "ends in the middle of a word",
                             {ErrorPlace::Unit::Byte, position + rest.size()},
                             fmt::format("copy it again or cut it off after byte {}", position));
    }
}

}  // namespace kelvora::recording
