// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kelvora/recording/recording_error.hpp"
#include "kelvora/recording/sensor_size.hpp"
#include "kelvora/recording/text_layout.hpp"
#include "recording/coding/bytes.hpp"
#include "recording/coding/event_decoder.hpp"
#include "recording/coding/event_encoder.hpp"

namespace kelvora::recording {

/// The beginning of a recording that is being opened.
struct RecordingStart {
    Bytes head;            ///< The first bytes, up to 64 KiB.
    bool is_whole;         ///< Whether `head` is the whole recording.
    std::string file;      ///< For messages.
    TextLayout text = {};  ///< Layout of a text recording, if the user states it.
};

/// A recording whose header was read.
struct OpenedRecording {
    std::unique_ptr<EventDecoder> decoder;
    std::size_t header_length = 0;          ///< Number of bytes before the first one to decode.
    std::optional<SensorSize> sensor_size;  ///< From the header.
};

/// A kind of file that contains events, or that users may mistake for one. The readers, the
/// writers, the tool and the Python package get all information about a format from this object.
struct Format {
    /// In options and output, such as "evt3". Empty if the format is neither read nor written.
    std::string name = {};

    /// Completes the sentence "The file is ...", such as "an EVT 3 recording".
    std::string title = {};

    /// The content of a file, for the documentation.
    std::string description = {};

    /// When the file states the size of the sensor, for the documentation.
    std::string states_sensor_size = {};

    /// Extensions of file names that select the format for writing, in lower case. The longest match
    /// among all formats wins. None occurs in two formats.
    std::vector<std::string_view> extensions = {};

    /// The extensions to propose if a name has another one, such as ".bin (records)".
    std::string proposed_extensions = {};

    /// Whether a file that begins with these bytes, up to 64 KiB, has this format. Must be false
    /// for files of all other formats.
    std::function<bool(Bytes head)> recognises;

    /// Reads the header and makes a decoder. Empty if the format cannot be read.
    ///
    /// \throws RecordingError  if the header has a defect or states another format.
    std::function<OpenedRecording(const RecordingStart& start)> open = {};

    /// Makes an encoder. Empty if the format cannot be written.
    std::function<std::unique_ptr<EventEncoder>(const std::string& file, const SensorSize& size)>
        makeEncoder = {};

    /// What to do with a file that was recognised but cannot be read. Empty if it can be.
    std::optional<Remedy> remedy = {};

    /// Why such a file cannot be read, if there is more to say than "is TITLE, which is not
    /// supported".
    std::function<std::string(Bytes head)> problem = {};
};

}  // namespace kelvora::recording
