// SPDX-License-Identifier: MIT
#include "recording/decoding_reader.hpp"

#include <gmock/gmock.h>

#include <algorithm>

#include "recording_support.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

using ::testing::HasSubstr;

constexpr std::size_t kSizeBytes = 4;

/// Decodes packets: 32 bits for the size of the packet, then one byte per event, its column.
class PacketDecoder : public EventDecoder {
public:
    std::size_t decode(Bytes bytes, std::vector<Event2D>& events) override {
        if (bytes.size() < kSizeBytes) {
            return 0;
        }
        const std::size_t size = loadLittleEndian<std::uint32_t>(bytes.data());
        if (bytes.size() - kSizeBytes < size) {
            return 0;
        }
        const std::size_t count = std::min(size - taken, kMaxEventsPerChunk - events.size());
        for (const char column : bytes.substr(kSizeBytes + taken, count)) {
            events.push_back(eventAt(0, static_cast<unsigned char>(column), 0, 0));
        }
        taken += count;
        if (taken < size) {
            return 0;
        }
        taken = 0;
        return kSizeBytes + size;
    }

    void finish(Bytes rest, std::vector<Event2D>& /*events*/) override { left_over = rest.size(); }

    std::size_t left_over = 0;

private:
    std::size_t taken = 0;  // events of the packet at the front
};

class DecodingReaderTest : public ::testing::Test {
protected:
    DecodingReader readerOf(const std::filesystem::path& path) {
        auto owned = std::make_unique<PacketDecoder>();
        decoder = owned.get();
        return {std::make_unique<InputBuffer>(path, nullptr), std::move(owned), "packets",
                std::nullopt};
    }

    static std::string packet(std::size_t size) {
        std::string bytes;
        appendLittleEndian(bytes, static_cast<std::uint32_t>(size));
        for (std::size_t i = 0; i < size; ++i) {
            bytes.push_back(static_cast<char>(i % 251));
        }
        return bytes;
    }

    test::TemporaryDirectory directory;
    PacketDecoder* decoder = nullptr;
};

TEST_F(DecodingReaderTest, ReadsPacketsLargerThanItsBufferInChunks) {
    constexpr std::size_t kPacket = 5'000'000;
    DecodingReader reader = readerOf(directory.file("a", packet(kPacket) + packet(3)));
    std::vector<Event2D> events;
    std::size_t count = 0;
    while (reader.read(events)) {
        ASSERT_LE(events.size(), kMaxEventsPerChunk);
        for (const Event2D& event : events) {
            ASSERT_EQ(event.x, count < kPacket ? count % 251 : count - kPacket) << count;
            ++count;
        }
    }
    EXPECT_EQ(count, kPacket + 3);
    EXPECT_EQ(reader.bytesRead(), reader.fileSize());
    EXPECT_EQ(decoder->left_over, 0U);
}

TEST_F(DecodingReaderTest, HandsTheRestOfABrokenPacketToTheDecoder) {
    const std::string bytes = packet(1'000'000).substr(0, 700'000);
    DecodingReader reader = readerOf(directory.file("a", bytes));
    std::vector<Event2D> events;
    EXPECT_FALSE(reader.read(events));
    EXPECT_EQ(decoder->left_over, bytes.size());
}

TEST_F(DecodingReaderTest, RefusesAPacketThatNeverEnds) {
    const std::string claim = "\xFF\xFF\xFF\xFF";
    const auto path = directory.file("a", claim);
    std::filesystem::resize_file(path, kMaxItemBytes + 1);  // a hole, which needs no disk space
    DecodingReader reader = readerOf(path);
    std::vector<Event2D> events;
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            reader.read(events);
            FAIL();
        } catch (const std::exception& error) {
            EXPECT_THAT(error.what(), HasSubstr("a: contains an item of more than 64 MiB, byte 0"));
        }
    }
}

}  // namespace
}  // namespace kelvora::recording
