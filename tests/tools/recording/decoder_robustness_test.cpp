// SPDX-License-Identifier: MIT
// Damaged recordings: a decoder may find events in them or reject them, but must never crash, hang
// or exceed its limits.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>

#include "recording/formats/evt/evt2_decoder.hpp"
#include "recording/formats/evt/evt2_encoder.hpp"
#include "recording/formats/evt/evt3_decoder.hpp"
#include "recording/formats/evt/evt3_encoder.hpp"
#include "recording/formats/records/records_decoder.hpp"
#include "recording/formats/records/records_encoder.hpp"
#include "recording/formats/text/text_decoder.hpp"
#include "recording/formats/text/text_encoder.hpp"
#include "recording_support.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

struct Codec {
    const char* name;
    std::function<std::unique_ptr<EventDecoder>()> createDecoder;
    std::function<std::unique_ptr<EventEncoder>()> createEncoder;
};

const Codec kRecords = {"records", [] { return std::make_unique<RecordsDecoder>("a"); },
                        [] { return std::make_unique<RecordsEncoder>(); }};
const Codec kText = {"text", [] { return std::make_unique<TextDecoder>("a", TextLayout{}, 0); },
                     [] {
                         return std::make_unique<TextEncoder>(SensorSize{640, 480});
                     }};
const Codec kEvt2 = {"evt2", [] { return std::make_unique<Evt2Decoder>("a", 0); },
                     [] {
                         return std::make_unique<Evt2Encoder>("a", SensorSize{640, 480});
                     }};
const Codec kEvt3 = {"evt3", [] { return std::make_unique<Evt3Decoder>("a", 0); },
                     [] {
                         return std::make_unique<Evt3Encoder>("a", SensorSize{640, 480});
                     }};

class DecoderRobustness : public ::testing::TestWithParam<Codec> {
protected:
    static Outcome decodeAll(Bytes bytes, std::size_t cut) {
        return decode(*GetParam().createDecoder(), bytes, cut);
    }

    static std::string encoded(const std::vector<Event2D>& events) {
        std::string bytes;
        GetParam().createEncoder()->encode(events, bytes);
        return bytes;
    }

    test::TemporaryDirectory directory;
};

TEST_P(DecoderRobustness, RandomBytesDoNoHarmWhereverTheyAreCut) {
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
        EXPECT_LE(whole.events.size(), bytes.size() * 12);
    }
}

TEST_P(DecoderRobustness, RandomPiecesOfTextDoNoHarm) {
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

TEST_P(DecoderRobustness, FlippedBitsDoNoHarm) {
    const std::string sound = encoded(randomRecording(3, 200, 1000));
    std::mt19937_64 random(3);
    for (int round = 0; round < 1000; ++round) {
        std::string bytes = sound;
        char& byte = bytes[random() % bytes.size()];
        byte = static_cast<char>(static_cast<unsigned char>(byte) ^ (1U << random() % 8));
        const Outcome outcome = decodeAll(bytes, random() % bytes.size());
        EXPECT_LE(outcome.events.size(), bytes.size() * 12);
    }
}

TEST_P(DecoderRobustness, EveryCutOfARecordingGivesTheSameEvents) {
    const std::vector<Event2D> events = randomRecording(4, 60, 20'000'000);
    const std::string bytes = encoded(events);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        const Outcome outcome = decodeAll(bytes, cut);
        ASSERT_EQ(outcome.events, events) << cut;
        ASSERT_EQ(outcome.error, "") << cut;
    }
}

TEST_P(DecoderRobustness, EveryBeginningOfARecordingGivesABeginningOfItsEvents) {
    const std::vector<Event2D> events = randomRecording(5, 60, 20'000'000);
    const std::string bytes = encoded(events);
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        const Outcome outcome = decodeAll(bytes.substr(0, size), 0);
        // In text, the last number may be truncated to a shorter one, which is valid but different.
        const std::size_t sound =
            outcome.events.size() - (GetParam().name == kText.name && !outcome.events.empty());
        ASSERT_LE(sound, events.size());
        ASSERT_TRUE(std::equal(outcome.events.begin(),
                               outcome.events.begin() + static_cast<std::ptrdiff_t>(sound),
                               events.begin()));
    }
}

TEST_P(DecoderRobustness, RandomFilesDoNoHarm) {
    std::mt19937_64 random(6);
    const std::vector<std::string> starts = {"",   "% evt 2.0\n", "% evt 3.0\n",
                                             "% ", "640 480\n",   "t x y p\n",
                                             "# ", "1 2 3 0\n",   recordBytes(1, 2, 3, 1)};
    for (int round = 0; round < 100; ++round) {
        std::string bytes = starts[random() % starts.size()];
        for (std::size_t i = random() % 200; i > 0; --i) {
            bytes.push_back(static_cast<char>(random() % 2 == 0 ? random() : ' ' + random() % 95));
        }
        const auto path = directory.file("a", bytes);
        const Outcome outcome = readRecording(path);
        EXPECT_LE(outcome.events.size(), bytes.size() * 12);
        EXPECT_EQ(outcome.error.find('\n'), std::string::npos);
    }
}

INSTANTIATE_TEST_SUITE_P(AllFormats, DecoderRobustness,
                         ::testing::Values(kRecords, kText, kEvt2, kEvt3),
                         [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace kelvora::recording
