// SPDX-License-Identifier: MIT
#include "kelvora/recording/event_reader.hpp"

#include <fmt/format.h>

#include <stdexcept>

#include "kelvora/recording/recording_error.hpp"
#include "recording/decoding_reader.hpp"
#include "recording/formats/format_table.hpp"

namespace kelvora::recording {
namespace {

constexpr std::size_t kHeadBytes =
    std::size_t{64} * 1024;  // enough for any header and for recognising a format

// Looks a given format up before the recording is opened.
const Format* givenFormat(const ReadOptions& options) {
    if (!options.format) {
        return nullptr;
    }
    const Format* const format = findFormat(*options.format);
    if (format == nullptr || !format->open) {
        throw std::invalid_argument(
            fmt::format("there is no readable format '{}'", *options.format));
    }
    return format;
}

}  // namespace

EventReader::~EventReader() = default;

std::unique_ptr<EventReader> openRecording(const std::filesystem::path& path,
                                           const ReadOptions& options) {
    const Format* format = givenFormat(options);
    auto input = std::make_unique<InputBuffer>(path, options.on_signal);
    const bool has_more = input->fillTo(kHeadBytes);
    const std::string& file = input->source().name();
    const Bytes head = input->unread();
    if (head.empty()) {
        throw RecordingError(ErrorKind::Damaged, file, "is empty", {},
                             "give a recording with events");
    }
    format = format != nullptr ? format : &detectFormat(head, file);
    OpenedRecording opened = format->open({head, !has_more, file, options.text});
    input->skip(opened.header_length);
    return std::make_unique<DecodingReader>(
        std::move(input), std::move(opened.decoder), format->name,
        options.sensor_size ? options.sensor_size : opened.sensor_size);
}

}  // namespace kelvora::recording
