// SPDX-License-Identifier: MIT
#include "kelvora/recording/event_writer.hpp"

#include <fmt/format.h>

#include <exception>
#include <stdexcept>
#include <string>

#include "kelvora/recording/recording_error.hpp"
#include "recording/coding/event_encoder.hpp"
#include "recording/formats/format_table.hpp"
#include "recording/output_file.hpp"

namespace kelvora::recording {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{256} * 1024;

// Looks the format up before anything is created.
const Format& requireWritable(std::string_view name) {
    const Format* const format = findFormat(name);
    if (format == nullptr || !format->makeEncoder) {
        throw std::invalid_argument(fmt::format("there is no writable format '{}'", name));
    }
    return *format;
}

class FileEventWriter : public EventWriter {
public:
    FileEventWriter(const std::filesystem::path& path, const Format& format,
                    const SensorSize& sensor_size, const WriteOptions& options)
        : file(path, options), encoder(format.makeEncoder(file.name(), sensor_size)) {
        encoder->encodeHeader(buffer);
    }

    ~FileEventWriter() override {
        try {
            if (has_events) {
                flush();
            }
        } catch (...) {
            // The file remains incomplete in any case.
            static_cast<void>(std::current_exception());
        }
    }

    FileEventWriter(const FileEventWriter&) = delete;
    FileEventWriter& operator=(const FileEventWriter&) = delete;

    void write(const std::vector<Event2D>& events) override {
        for (const Event2D& event : events) {
            checkPolarity(event);
        }
        has_events = has_events || !events.empty();
        encoder->encode(events, buffer);
        if (buffer.size() >= kBufferBytes) {
            flush();
        }
    }

    void close() override {
        flush();
        file.close();
    }

private:
    void checkPolarity(const Event2D& event) const {
        if (event.polarity > 1) {
            throw RecordingError(
                ErrorKind::CannotHold, file.name(),
                fmt::format("cannot store the polarity {}", static_cast<unsigned>(event.polarity)),
                {ErrorPlace::Unit::EventAt, event.timestamp}, "write polarities of 0 and 1 only");
        }
    }

    void flush() {
        // Empty the buffer first: after a failure, closing must not write the same bytes again.
        const std::string bytes = std::move(buffer);
        buffer.clear();
        file.write(bytes);
    }

    OutputFile file;
    std::unique_ptr<EventEncoder> encoder;
    std::string buffer;
    bool has_events = false;  ///< A header alone is not worth keeping.
};

}  // namespace

EventWriter::~EventWriter() = default;

std::unique_ptr<EventWriter> createRecording(const std::filesystem::path& path,
                                             std::string_view format, const SensorSize& sensor_size,
                                             const WriteOptions& options) {
    return std::make_unique<FileEventWriter>(path, requireWritable(format), sensor_size, options);
}

}  // namespace kelvora::recording
