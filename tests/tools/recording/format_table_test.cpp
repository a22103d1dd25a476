// SPDX-License-Identifier: MIT
#include "recording/formats/format_table.hpp"

#include <gmock/gmock.h>

#include <set>

#include "kelvora/recording/recording_error.hpp"
#include "recording_support.hpp"
#include "support/temporary_directory.hpp"

namespace kelvora::recording {
namespace {

using ::testing::HasSubstr;

using namespace std::string_view_literals;

std::string detect(Bytes head) {
    return detectFormat(head, "a.raw").name;
}

std::string errorOf(Bytes head) {
    try {
        detect(head);
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "";
}

TEST(FormatTable, NamesEachFormatAndEachExtensionOnce) {
    std::set<std::string> names;
    std::set<std::string_view> extensions;
    for (const Format& format : formatTable()) {
        EXPECT_TRUE(format.name.empty() || names.insert(format.name).second) << format.name;
        for (const std::string_view extension : format.extensions) {
            EXPECT_TRUE(extensions.insert(extension).second) << extension;
            EXPECT_EQ(extension.front(), '.');
        }
    }
}

TEST(FormatTable, DescribesReadableFormatsAndGivesARemedyForOthers) {
    for (const Format& format : formatTable()) {
        EXPECT_NE(format.title, "");
        EXPECT_TRUE(format.recognises) << format.title;
        EXPECT_EQ(format.open != nullptr, !format.remedy) << format.title;
        EXPECT_EQ(format.open != nullptr, !format.name.empty()) << format.title;
        EXPECT_EQ(format.open != nullptr, !format.description.empty()) << format.title;
        EXPECT_EQ(format.makeEncoder != nullptr, !format.extensions.empty()) << format.title;
        EXPECT_EQ(format.makeEncoder != nullptr, !format.proposed_extensions.empty());
    }
}

TEST(FormatTable, MatchesThePageOfTheDocumentation) {
    const std::string page = test::contentOf(KELVORA_DOCS "/recordings.md");
    for (const Format& format : formatTable()) {
        if (format.open) {
            EXPECT_THAT(page, HasSubstr("| `" + format.name + "` | " + format.description + " | " +
                                        format.states_sensor_size + " |\n"));
        }
        for (const std::string_view extension : format.extensions) {
            EXPECT_THAT(page, HasSubstr("`" + std::string(extension) + "`"));
        }
    }
}

TEST(FindFormat, FindsFormatsByNameOnly) {
    EXPECT_EQ(findFormat("evt3")->name, "evt3");
    EXPECT_EQ(findFormat("EVT3"), nullptr);
    EXPECT_EQ(findFormat(""), nullptr);
}

TEST(DetectFormat, KnowsEvtByItsHeader) {
    EXPECT_EQ(detect("% evt 3.0\n\x2D\x8B"), "evt3");
    EXPECT_EQ(detect("% Date 2020-09-25\n% evt 2.0\n\xD0\xD8"), "evt2");
    EXPECT_EQ(detect("% format EVT3;height=480;width=640\n% end\n"), "evt3");
    EXPECT_EQ(detect("% format EVT2;height=480;width=640\n% end\n"), "evt2");
}

TEST(DetectFormat, RefusesOtherVersionsOfEvtByName) {
    EXPECT_THAT(errorOf("% evt 2.1\n"),
                HasSubstr("a.raw: is an EVT 2.1 recording, which is not supported"));
    EXPECT_THAT(errorOf("% format EVT21;height=480;width=640\n"), HasSubstr("EVT 2.1"));
    EXPECT_THAT(errorOf("% evt 4.0\n"), HasSubstr("EVT 4 recording"));
    EXPECT_THAT(errorOf("% Date today\n\x2D\x8B"),
                HasSubstr("without an EVT version, give it with"));
}

TEST(DetectFormat, KnowsTextByItsFirstLine) {
    EXPECT_EQ(detect("0.003811000 96 133 0\n0.0038"), "text");
    EXPECT_EQ(detect("215,302,0,3"), "text");
    EXPECT_EQ(detect("# a comment\n\n640 480\n"), "text");
    EXPECT_EQ(detect("x,y,p,t\r\n"), "text");
    EXPECT_EQ(detect("timestamp_us;x;y;polarity\r\n"), "text");
    EXPECT_EQ(detect("\xEF\xBB\xBFt x y p\n"), "text");
    EXPECT_EQ(detect("# gr\xC3\xBC\xC3\x9F\n1 2 3 0\n"), "text");
}

TEST(DetectFormat, KnowsRecordsByTheirPaddingAndPolarity) {
    EXPECT_EQ(detect(recordBytes(1, 2, 3, 1)), "records");
    EXPECT_EQ(detect(recordBytes(1, 2, 3, 1) + recordBytes(1, 2, 3, 0) + "cut"), "records");
    EXPECT_THAT(errorOf(recordBytes(1, 2, 3, 2)), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(recordBytes(1, 2, 3, 1) + recordBytes(1, 2, 3, 256)),
                HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(recordBytes(1, 2, 3, 1).substr(1)), HasSubstr("unknown format"));
}

TEST(DetectFormat, KnowsRecordsThatBeginWithThePercentSignOfAnEvtHeader) {
    EXPECT_EQ(detect(recordBytes(0x2025, 2, 3, 1)), "records");
}

TEST(DetectFormat, NamesKnownFormatsThatItCannotRead) {
    EXPECT_THAT(errorOf("\x89HDF\r\n\x1A\n...."sv),
                HasSubstr("is an HDF5 file, which is not supported, convert"));
    EXPECT_THAT(errorOf("#!AER-DAT4.0\r\n"), HasSubstr("is an AEDAT file"));
    EXPECT_THAT(errorOf("#ROSBAG V2.0\n"), HasSubstr("is a ROS bag"));
    EXPECT_THAT(errorOf("SQLite format 3\0..."sv), HasSubstr("ROS 2"));
    EXPECT_THAT(errorOf("% Data file containing events.\n% Version 2\n"),
                HasSubstr("is a DAT recording"));
    EXPECT_THAT(errorOf("% Version 2\n"), HasSubstr("is a DAT recording"));
    EXPECT_THAT(errorOf("PK\x03\x04...."), HasSubstr("is a ZIP archive"));
    EXPECT_THAT(errorOf("\x1F\x8B...."),
                HasSubstr("is a gzip file, which is not supported, decompress"));
}

TEST(DetectFormat, RefusesUnknownFormatsAndNamesTheKnownOnes) {
    EXPECT_THAT(errorOf("\x01\x02\x03"), HasSubstr("records, text, evt2 and evt3"));
    EXPECT_THAT(errorOf("\x01\x02\x03"), HasSubstr("ReadOptions::format"));
    EXPECT_THAT(errorOf("Dear diary,\n"), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf("# nothing but a comment\n"), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf("\n \n\t\n"), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(""), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(",,,\n"), HasSubstr("unknown format"));
}

}  // namespace
}  // namespace kelvora::recording
