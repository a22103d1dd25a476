// SPDX-License-Identifier: MIT
#include "recording/format_detection.hpp"

#include <gmock/gmock.h>

#include "kelvora/recording/recording_error.hpp"
#include "recording_support.hpp"

namespace kelvora::recording {
namespace {

using ::testing::HasSubstr;

using namespace std::string_view_literals;

Format detect(Bytes head) {
    return detectFormat(head, "a.raw");
}

std::string errorOf(Bytes head) {
    try {
        detect(head);
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "";
}

TEST(FormatDetection, KnowsEvtByItsHeader) {
    EXPECT_EQ(detect("% evt 3.0\n\x2D\x8B"), Format::Evt3);
    EXPECT_EQ(detect("% Date 2020-09-25\n% evt 2.0\n\xD0\xD8"), Format::Evt2);
    EXPECT_EQ(detect("% format EVT3;height=480;width=640\n% end\n"), Format::Evt3);
    EXPECT_EQ(detect("% format EVT2;height=480;width=640\n% end\n"), Format::Evt2);
}

TEST(FormatDetection, RefusesOtherVersionsOfEvtByName) {
    EXPECT_THAT(errorOf("% evt 2.1\n"),
                HasSubstr("a.raw: is an EVT 2.1 recording, which is not supported"));
    EXPECT_THAT(errorOf("% format EVT21;height=480;width=640\n"), HasSubstr("EVT 2.1"));
    EXPECT_THAT(errorOf("% evt 4.0\n"), HasSubstr("EVT 4 recording"));
    EXPECT_THAT(errorOf("% Date today\n\x2D\x8B"),
                HasSubstr("without an EVT version, give it with"));
}

TEST(FormatDetection, KnowsTextByItsFirstLine) {
    EXPECT_EQ(detect("0.003811000 96 133 0\n0.0038"), Format::Text);
    EXPECT_EQ(detect("215,302,0,3"), Format::Text);
    EXPECT_EQ(detect("# a comment\n\n640 480\n"), Format::Text);
    EXPECT_EQ(detect("x,y,p,t\r\n"), Format::Text);
    EXPECT_EQ(detect("timestamp_us;x;y;polarity\r\n"), Format::Text);
    EXPECT_EQ(detect("\xEF\xBB\xBFt x y p\n"), Format::Text);
    EXPECT_EQ(detect("# gr\xC3\xBC\xC3\x9F\n1 2 3 0\n"), Format::Text);
}

TEST(FormatDetection, KnowsRecordsByTheirPaddingAndPolarity) {
    EXPECT_EQ(detect(recordBytes(1, 2, 3, 1)), Format::Records);
    EXPECT_EQ(detect(recordBytes(1, 2, 3, 1) + recordBytes(1, 2, 3, 0) + "cut"), Format::Records);
    EXPECT_THAT(errorOf(recordBytes(1, 2, 3, 2)), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(recordBytes(1, 2, 3, 1) + recordBytes(1, 2, 3, 256)),
                HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(recordBytes(1, 2, 3, 1).substr(1)), HasSubstr("unknown format"));
}

TEST(FormatDetection, KnowsRecordsThatBeginWithThePercentSignOfAnEvtHeader) {
    EXPECT_EQ(detect(recordBytes(0x2025, 2, 3, 1)), Format::Records);
}

TEST(FormatDetection, NamesFormatsThatAreNotRead) {
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

TEST(FormatDetection, RefusesWhatItDoesNotKnowAndNamesTheFormatsItDoes) {
    EXPECT_THAT(errorOf("\x01\x02\x03"), HasSubstr("records, text, evt2 and evt3"));
    EXPECT_THAT(errorOf("\x01\x02\x03"), HasSubstr("--input-format"));
    EXPECT_THAT(errorOf("Dear diary,\n"), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf("# nothing but a comment\n"), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf("\n \n\t\n"), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(""), HasSubstr("unknown format"));
    EXPECT_THAT(errorOf(",,,\n"), HasSubstr("unknown format"));
}

}  // namespace
}  // namespace kelvora::recording
