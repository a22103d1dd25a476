// SPDX-License-Identifier: MIT
#include "recording_support.hpp"

#include <random>
#include <tuple>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora {

bool operator==(const Event2D& left, const Event2D& right) {
    return std::tie(left.timestamp, left.x, left.y, left.polarity) ==
           std::tie(right.timestamp, right.x, right.y, right.polarity);
}

std::ostream& operator<<(std::ostream& out, const Event2D& event) {
    return out << event.timestamp << " us (" << event.x << ", " << event.y << ") "
               << static_cast<int>(event.polarity);
}

namespace recording {

Event2D eventAt(std::uint64_t time, int x, int y, int polarity) {
    return {static_cast<unsigned short>(x), static_cast<unsigned short>(y),
            static_cast<unsigned char>(polarity), time};
}

std::vector<Event2D> randomRecording(unsigned seed, std::size_t count,
                                     std::uint64_t longest_pause) {
    std::mt19937_64 random(seed);
    std::vector<Event2D> events;
    std::uint64_t time = random() % 100'000;
    while (events.size() < count) {
        const bool is_pause = random() % 50 == 0;
        time += random() % (is_pause ? longest_pause : 40);
        const int y = static_cast<int>(random() % 2048);
        const int polarity = static_cast<int>(random() % 2);
        const std::size_t run = random() % 4 == 0 ? random() % 30 : 1;
        int x = static_cast<int>(random() % 2048);
        for (std::size_t i = 0; i < run && x < 2048 && events.size() < count; ++i) {
            events.push_back(eventAt(time, x, y, polarity));
            x += 1 + static_cast<int>(random() % 3);
        }
    }
    return events;
}

std::string recordBytes(std::uint64_t time, int x, int y, int polarity) {
    std::string bytes;
    appendLittleEndian<std::uint64_t>(bytes, time);
    appendLittleEndian<std::uint16_t>(bytes, static_cast<std::uint16_t>(x));
    appendLittleEndian<std::uint16_t>(bytes, static_cast<std::uint16_t>(y));
    appendLittleEndian<std::uint32_t>(bytes, static_cast<std::uint32_t>(polarity));
    return bytes;
}

std::string words16(const std::vector<std::uint16_t>& words) {
    std::string bytes;
    for (const std::uint16_t word : words) {
        appendLittleEndian(bytes, word);
    }
    return bytes;
}

std::string words32(const std::vector<std::uint32_t>& words) {
    std::string bytes;
    for (const std::uint32_t word : words) {
        appendLittleEndian(bytes, word);
    }
    return bytes;
}

Outcome decode(EventDecoder& decoder, Bytes bytes, std::size_t cut) {
    Outcome outcome;
    std::vector<Event2D> chunk;
    const auto keep_chunk = [&] {
        outcome.events.insert(outcome.events.end(), chunk.begin(), chunk.end());
        chunk.clear();
    };
    std::size_t position = 0;
    try {
        for (const std::size_t end : {cut, bytes.size()}) {
            std::size_t used = 1;
            while (used > 0) {
                used = decoder.decode(bytes.substr(position, end - position), chunk);
                position += used;
                keep_chunk();
            }
        }
        decoder.finish(bytes.substr(position), chunk);
    } catch (const RecordingError& error) {
        outcome.error = error.what();
    }
    keep_chunk();
    return outcome;
}

Outcome readRecording(const std::filesystem::path& path, const ReadOptions& options) {
    Outcome outcome;
    try {
        const auto reader = openRecording(path, options);
        std::vector<Event2D> chunk;
        while (reader->read(chunk)) {
            outcome.events.insert(outcome.events.end(), chunk.begin(), chunk.end());
        }
    } catch (const RecordingError& error) {
        outcome.error = error.what();
    }
    return outcome;
}

}  // namespace recording
}  // namespace kelvora
