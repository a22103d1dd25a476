// SPDX-License-Identifier: MIT
// Properties of every format in the table. Damaged recordings: a decoder may find events in them or
// reject them, but must never crash, hang or exceed its limits.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "kelvora/recording/recording_error.hpp"
#include "recording/formats/format_table.hpp"
#include "recording_support.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

constexpr std::size_t kMaxEventsPerByte = 12;

std::vector<const Format*> formatsThatAreRead() {
    std::vector<const Format*> formats;
    for (const Format& format : formatTable()) {
        if (format.open) {
            formats.push_back(&format);
        }
    }
    return formats;
}

class EveryFormat : public ::testing::TestWithParam<const Format*> {
protected:
    static const Format& format() { return *GetParam(); }

    /// Decodes a whole recording that arrives in two pieces.
    static Outcome decodeAll(Bytes bytes, std::size_t cut) {
        try {
            const OpenedRecording opened = format().open({bytes, true, "a"});
            const std::size_t length = opened.header_length;
            return decode(*opened.decoder, bytes.substr(length), std::max(cut, length) - length);
        } catch (const RecordingError& error) {
            return {{}, error.what()};
        }
    }

    /// The header, and the bytes up to the end of each event.
    static std::vector<std::string> encodedOneByOne(const std::vector<Event2D>& events) {
        const auto encoder = format().makeEncoder("a", {2048, 2048});
        std::string bytes;
        encoder->encodeHeader(bytes);
        std::vector<std::string> beginnings = {bytes};
        for (const Event2D& event : events) {
            encoder->encode({event}, bytes);
            beginnings.push_back(bytes);
        }
        return beginnings;
    }

    static std::string encoded(const std::vector<Event2D>& events) {
        const auto encoder = format().makeEncoder("a", {2048, 2048});
        std::string bytes;
        encoder->encodeHeader(bytes);
        encoder->encode(events, bytes);
        return bytes;
    }

    test::TemporaryDirectory directory;
};

TEST_P(EveryFormat, SurvivesRandomBytesCutAnywhere) {
    std::mt19937_64 random(1);
    for (int round = 0; round < 300; ++round) {
        std::string bytes(random() % 3000, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(random());
        }
        const Outcome whole = decodeAll(bytes, 0);
        const Outcome cut = decodeAll(bytes, bytes.empty() ? 0 : random() % bytes.size());
        EXPECT_TRUE(whole.events == cut.events);
        EXPECT_EQ(whole.error, cut.error);
        EXPECT_LE(whole.events.size(), bytes.size() * kMaxEventsPerByte);
    }
}

TEST_P(EveryFormat, SurvivesRandomPiecesOfText) {
    const std::vector<std::string> pieces = {
        "0",         "1", "17", " ",   ",", ";",  "\n",  "\r\n", ".",
        "-",         "e", "+",  "nan", "#", "\t", "inf", "1e9",  std::string(1, '\0'),
        "9999999999"};
    std::mt19937_64 random(2);
    for (int round = 0; round < 1000; ++round) {
        std::string bytes;
        for (std::size_t i = random() % 60; i > 0; --i) {
            bytes += pieces[random() % pieces.size()];
        }
        const Outcome whole = decodeAll(bytes, 0);
        const Outcome cut = decodeAll(bytes, bytes.empty() ? 0 : random() % bytes.size());
        EXPECT_TRUE(whole.events == cut.events);
        EXPECT_EQ(whole.error, cut.error);
    }
}

TEST_P(EveryFormat, SurvivesRandomBytesAfterAHeader) {
    const std::string header = format().makeEncoder ? encoded({}) : "";
    std::mt19937_64 random(7);
    for (int round = 0; round < 300; ++round) {
        std::string bytes = header;
        for (std::size_t i = random() % 3000; i > 0; --i) {
            bytes.push_back(static_cast<char>(random()));
        }
        const Outcome whole = decodeAll(bytes, 0);
        const Outcome cut = decodeAll(bytes, bytes.empty() ? 0 : random() % bytes.size());
        EXPECT_TRUE(whole.events == cut.events);
        EXPECT_EQ(whole.error, cut.error);
    }
}

TEST_P(EveryFormat, SurvivesRandomFiles) {
    std::mt19937_64 random(6);
    const std::vector<std::string> starts = {"",   "% evt 2.0\n", "% evt 3.0\n",
                                             "% ", "640 480\n",   "t x y p\n",
                                             "# ", "1 2 3 0\n",   recordBytes(1, 2, 3, 1)};
    for (int round = 0; round < 100; ++round) {
        std::string bytes = starts[random() % starts.size()];
        for (std::size_t i = random() % 200; i > 0; --i) {
            bytes.push_back(static_cast<char>(random() % 2 == 0 ? random() : ' ' + random() % 95));
        }
        ReadOptions options;
        options.format = round % 2 == 0 ? std::optional(format().name) : std::nullopt;
        const Outcome outcome = readRecording(directory.file("a", bytes), options);
        EXPECT_LE(outcome.events.size(), bytes.size() * kMaxEventsPerByte);
        EXPECT_EQ(outcome.error.find('\n'), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, EveryFormat, ::testing::ValuesIn(formatsThatAreRead()),
                         [](const auto& tested) { return tested.param->name; });

std::vector<const Format*> formatsThatAreWritten() {
    std::vector<const Format*> formats = formatsThatAreRead();
    formats.erase(std::remove_if(formats.begin(), formats.end(),
                                 [](const Format* format) { return !format->makeEncoder; }),
                  formats.end());
    return formats;
}

class EveryWrittenFormat : public EveryFormat {};

TEST_P(EveryWrittenFormat, IsRecognisedByItselfAlone) {
    const std::string bytes = encoded(randomRecording(8, 100, 1000));
    EXPECT_EQ(&detectFormat(bytes, "a"), GetParam());
    for (const Format& other : formatTable()) {
        EXPECT_EQ(other.recognises(bytes), &other == GetParam()) << other.title;
    }
}

TEST_P(EveryWrittenFormat, IsRecognisedUnderAnyFileName) {
    const auto path = directory.file("a", encoded(randomRecording(8, 100, 1000)));
    EXPECT_EQ(openRecording(path)->format(), format().name);
}

TEST_P(EveryWrittenFormat, GivesTheSameEventsForBytesCutAnywhere) {
    const std::vector<Event2D> events = randomRecording(4, 60, 20'000'000);
    const std::string bytes = encoded(events);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        const Outcome outcome = decodeAll(bytes, cut);
        ASSERT_EQ(outcome.events, events) << cut;
        ASSERT_EQ(outcome.error, "") << cut;
    }
}

TEST_P(EveryWrittenFormat, GivesAllCompleteEventsOfAnIncompleteRecording) {
    const std::vector<Event2D> events = randomRecording(5, 60, 20'000'000);
    const std::vector<std::string> beginnings = encodedOneByOne(events);
    std::size_t whole = 0;
    for (std::size_t size = beginnings.front().size(); size < beginnings.back().size(); ++size) {
        while (beginnings[whole + 1].size() <= size) {
            ++whole;
        }
        const Outcome outcome = decodeAll(beginnings.back().substr(0, size), 0);
        // In text, the last number may be truncated to a shorter one, which is valid but different.
        ASSERT_GE(outcome.events.size(), whole) << size;
        ASSERT_LE(outcome.events.size(), whole + 1) << size;
        ASSERT_TRUE(std::equal(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(whole),
                               outcome.events.begin()))
            << size;
        ASSERT_EQ(outcome.error.find('\n'), std::string::npos) << size;
    }
}

TEST_P(EveryWrittenFormat, SurvivesAnIncompleteHeader) {
    const std::string header = encoded({});
    for (std::size_t size = 1; size < header.size(); ++size) {
        EXPECT_TRUE(readRecording(directory.file("a", header.substr(0, size))).events.empty());
        EXPECT_TRUE(decodeAll(header.substr(0, size), 0).events.empty());
    }
}

TEST_P(EveryWrittenFormat, SurvivesFlippedBits) {
    const std::string sound = encoded(randomRecording(3, 200, 1000));
    std::mt19937_64 random(3);
    for (int round = 0; round < 1000; ++round) {
        std::string bytes = sound;
        char& byte = bytes[random() % bytes.size()];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << random() % 8));
        const Outcome outcome = decodeAll(bytes, random() % bytes.size());
        EXPECT_LE(outcome.events.size(), bytes.size() * kMaxEventsPerByte);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, EveryWrittenFormat, ::testing::ValuesIn(formatsThatAreWritten()),
                         [](const auto& tested) { return tested.param->name; });

}  // namespace
}  // namespace kelvora::recording
