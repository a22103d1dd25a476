// SPDX-License-Identifier: MIT
#include "recording/formats/records/records_decoder.hpp"

#include <gmock/gmock.h>

#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

Outcome decodeRecords(Bytes bytes) {
    RecordsDecoder decoder("a.bin");
    return decode(decoder, bytes);
}

TEST(RecordsDecoder, ReadsLittleEndianFields) {
    const std::string bytes = {8, 7, 6, 5, 4, 3, 2, 1, 0x22, 0x11, 0x44, 0x33, 1, 0, 0, 0};
    EXPECT_THAT(decodeRecords(bytes).events,
                ElementsAre(eventAt(0x0102030405060708, 0x1122, 0x3344, 1)));
}

TEST(RecordsDecoder, GivesTheEventsBeforeAnInvalidPolarity) {
    const Outcome outcome = decodeRecords(recordBytes(1, 2, 3, 1) + recordBytes(4, 5, 6, 2));
    EXPECT_THAT(outcome.events, ElementsAre(eventAt(1, 2, 3, 1)));
    EXPECT_THAT(
        outcome.error,
        HasSubstr("a.bin: contains a record with polarity 2 instead of 0 or 1, byte 16, check"));
}

TEST(RecordsDecoder, RefusesPaddingOtherThanZero) {
    for (const std::size_t padding : {13U, 14U, 15U}) {
        std::string bytes = recordBytes(1, 2, 3, 1);
        bytes[padding] = 1;
        const Outcome outcome = decodeRecords(bytes);
        EXPECT_THAT(outcome.events, IsEmpty());
        EXPECT_THAT(outcome.error, HasSubstr("padding that is not zero, byte 0, "));
    }
}

TEST(RecordsDecoder, RefusesTimesAfterTheLatest) {
    EXPECT_EQ(decodeRecords(recordBytes(kLatestTime, 2, 3, 1)).events.size(), 1U);
    EXPECT_THAT(decodeRecords(recordBytes(kLatestTime + 1, 2, 3, 1)).error,
                HasSubstr("the invalid time 9223372036854775808, byte 0"));
}

TEST(RecordsDecoder, GivesTheEventsBeforeAnEndInsideARecord) {
    const std::string bytes = recordBytes(1, 2, 3, 1) + recordBytes(4, 5, 6, 0);
    for (std::size_t size = 17; size < 32; ++size) {
        const Outcome outcome = decodeRecords(bytes.substr(0, size));
        EXPECT_THAT(outcome.events, ElementsAre(eventAt(1, 2, 3, 1)));
        EXPECT_EQ(outcome.error, "a.bin: ends in the middle of a record, byte " +
                                     std::to_string(size) +
                                     ", copy it again or cut it off after byte 16");
    }
}

TEST(RecordsDecoder, GivesTheSameEventsForBytesCutAnywhere) {
    const std::string bytes = recordBytes(1, 2, 3, 1) + recordBytes(4, 5, 6, 0);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        RecordsDecoder decoder("a.bin");
        EXPECT_THAT(decode(decoder, bytes, cut).events,
                    ElementsAre(eventAt(1, 2, 3, 1), eventAt(4, 5, 6, 0)));
    }
}

TEST(RecordsDecoder, BoundsItsChunks) {
    std::string bytes;
    for (std::size_t i = 0; i < kMaxEventsPerChunk + 5; ++i) {
        bytes += recordBytes(i, 0, 0, 0);
    }
    RecordsDecoder decoder("a.bin");
    std::vector<Event2D> events;
    EXPECT_EQ(decoder.decode(bytes, events), kMaxEventsPerChunk * kRecordBytes);
    EXPECT_EQ(events.size(), kMaxEventsPerChunk);
    EXPECT_EQ(decodeRecords(bytes).events.size(), kMaxEventsPerChunk + 5);
}

}  // namespace
}  // namespace kelvora::recording
