// SPDX-License-Identifier: MIT
#include "kelvora/recording/event_reader.hpp"

#include <cstring>
#include <exception>
#include <functional>
#include <string>

#include "kelvora/recording/recording_error.hpp"
#include "recording/coding/event_decoder.hpp"
#include "recording/format_detection.hpp"
#include "recording/formats/evt/evt2_decoder.hpp"
#include "recording/formats/evt/evt3_decoder.hpp"
#include "recording/formats/evt/evt_header.hpp"
#include "recording/formats/records/records_decoder.hpp"
#include "recording/formats/text/text_decoder.hpp"
#include "recording/formats/text/text_header.hpp"
#include "recording/input_file.hpp"

namespace kelvora::recording {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{256} * 1024;
constexpr std::size_t kHeadBytes =
    std::size_t{64} * 1024;  // enough for any header and for recognising a format
constexpr std::size_t kMaxHeaderBytes = kHeadBytes / 2;

// The bytes of a file that have been read but not decoded yet.
class InputBuffer {
public:
    InputBuffer(const std::filesystem::path& path, const std::function<void()>& on_signal)
        : file(path, on_signal), buffer(kBufferBytes) {}

    Bytes unread() const { return {buffer.data() + begin, end - begin}; }

    void skip(std::size_t count) {
        begin += count;
        skipped += count;
    }

    // Reads the available bytes; false at the end of the file.
    bool fill() {
        if (begin > 0) {
            std::memmove(buffer.data(), buffer.data() + begin, end - begin);
            end -= begin;
            begin = 0;
        }
        const std::size_t count = file.read(buffer.data() + end, buffer.size() - end);
        end += count;
        return count > 0;
    }

    // Reads until `count` bytes are available; false if the file has fewer.
    bool fillTo(std::size_t count) {
        while (unread().size() < count) {
            if (!fill()) {
                return false;
            }
        }
        return true;
    }

    const InputFile& source() const { return file; }
    std::uint64_t position() const { return skipped; }

private:
    InputFile file;
    std::vector<char> buffer;
    std::size_t begin = 0;
    std::size_t end = 0;
    std::uint64_t skipped = 0;
};

class FileEventReader : public EventReader {
public:
    FileEventReader(const std::filesystem::path& path, const ReadOptions& options)
        : input(path, options.on_signal) {
        const bool has_more = input.fillTo(kHeadBytes);
        const Bytes head = input.unread();
        const std::string& file = input.source().name();
        if (head.empty()) {
            throw RecordingError(file, "is empty", "", "give a recording with events");
        }
        file_format = options.format ? *options.format : detectFormat(head, file);
        switch (file_format) {
            case Format::Records:
                decoder = std::make_unique<RecordsDecoder>(file);
                break;
            case Format::Text:
                openText(head, has_more, options.text);
                break;
            case Format::Evt2:
            case Format::Evt3:
                openEvt(head, has_more);
                break;
        }
        sensor_size = options.sensor_size ? options.sensor_size : sensor_size;
    }

    bool read(std::vector<Event2D>& events) override {
        events.clear();
        if (defect) {
            std::rethrow_exception(defect);
        }
        try {
            while (events.empty() && !is_finished) {
                decodeSome(events);
            }
        } catch (const RecordingError&) {
            // Return the events before the defect first. The next call throws the error.
            defect = std::current_exception();
            if (events.empty()) {
                throw;
            }
        }
        return !events.empty();
    }

    Format format() const override { return file_format; }
    std::optional<SensorSize> sensorSize() const override { return sensor_size; }
    std::uint64_t skippedWords() const override { return decoder->skippedWords(); }
    std::uint64_t bytesRead() const override { return input.position(); }
    std::uint64_t fileSize() const override { return input.source().size(); }

private:
    void openText(Bytes head, bool has_more, const TextLayout& layout) {
        const std::string& file = input.source().name();
        const Bytes lines = has_more ? head.substr(0, head.rfind('\n') + 1) : head;
        const TextHeader header = parseTextHeader(lines, layout, file);
        input.skip(header.length);
        sensor_size = header.sensor_size;
        decoder = std::make_unique<TextDecoder>(file, header.layout, header.lines);
    }

    void openEvt(Bytes head, bool has_more) {
        const std::string& file = input.source().name();
        const EvtHeader header = parseEvtHeader(head);
        if (has_more && header.length > kMaxHeaderBytes) {
            throw RecordingError(file, "has a header that does not end", "",
                                 "check that it is an EVT recording");
        }
        if (!header.evt_version.empty() && formatFromHeader(header, file) != file_format) {
            throw RecordingError(file,
                                 "is of format " + toString(formatFromHeader(header, file)) +
                                     " according to its header, not " + toString(file_format),
                                 "", "leave out --input-format");
        }
        input.skip(header.length);
        sensor_size = header.sensor_size;
        if (file_format == Format::Evt2) {
            decoder = std::make_unique<Evt2Decoder>(file, header.length);
        } else {
            decoder = std::make_unique<Evt3Decoder>(file, header.length);
        }
    }

    // Decodes the buffer, reads more bytes, or finishes.
    void decodeSome(std::vector<Event2D>& events) {
        const std::size_t used = decoder->decode(input.unread(), events);
        input.skip(used);
        if (used > 0 || input.fill()) {
            return;
        }
        is_finished = true;
        decoder->finish(input.unread(), events);
        input.skip(input.unread().size());
    }

    InputBuffer input;
    Format file_format{};
    std::optional<SensorSize> sensor_size;
    std::unique_ptr<EventDecoder> decoder;
    std::exception_ptr defect;
    bool is_finished = false;
};

}  // namespace

std::unique_ptr<EventReader> openRecording(const std::filesystem::path& path,
                                           const ReadOptions& options) {
    return std::make_unique<FileEventReader>(path, options);
}

}  // namespace kelvora::recording
