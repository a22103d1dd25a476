// SPDX-License-Identifier: MIT
#include "recording/format_detection.hpp"

#include <array>
#include <string_view>

#include "kelvora/recording/recording_error.hpp"
#include "recording/formats/records/records_decoder.hpp"
#include "recording/formats/text/text_header.hpp"

namespace kelvora::recording {
namespace {

using namespace std::string_view_literals;

constexpr const char* kConvert = "convert it to text with one event `t x y p` per line";
constexpr const char* kDecompress = "decompress it first";

struct ForeignFormat {
    std::string_view magic;  // the bytes a file of this format begins with
    const char* name;
    const char* remedy;
};

constexpr std::array<ForeignFormat, 15> kForeignFormats = {{
    {"\x89HDF\r\n\x1A\n"sv, "an HDF5 file", kConvert},
    {"#!AER-DAT"sv, "an AEDAT file", kConvert},
    {"#ROSBAG"sv, "a ROS bag", kConvert},
    {"SQLite format 3\0"sv, "an SQLite database (as ROS 2 bags are)", kConvert},
    {"\x89MCAP0\r\n"sv, "an MCAP file", kConvert},
    {"\x93NUMPY"sv, "a NumPy array", kConvert},
    {"MATLAB 5.0"sv, "a MATLAB file", kConvert},
    {"Event Stream"sv, "an Event Stream file", kConvert},
    {"% Data file containing"sv, "a DAT recording", kConvert},
    {"% Version"sv, "a DAT recording", kConvert},
    {"PK\x03\x04"sv, "a ZIP archive", kDecompress},
    {"\x1F\x8B"sv, "a gzip file", kDecompress},
    {"BZh"sv, "a bzip2 file", kDecompress},
    {"\xFD\x37zXZ"sv, "an xz file", kDecompress},
    {"\x28\xB5\x2F\xFD"sv, "a Zstandard file", kDecompress},
}};

bool beginsWith(Bytes bytes, std::string_view start) {
    return bytes.substr(0, start.size()) == start;
}

void refuseForeignFormats(Bytes head, const std::string& file) {
    for (const ForeignFormat& format : kForeignFormats) {
        if (beginsWith(head, format.magic)) {
            throw RecordingError(file,
                                 std::string("is ") + format.name + ", which is not supported", "",
                                 format.remedy);
        }
    }
}

bool looksLikeRecords(Bytes head) {
    if (head.size() < kRecordBytes) {
        return false;
    }
    for (std::size_t start = 0; start + kRecordBytes <= head.size(); start += kRecordBytes) {
        if (!isPlausibleRecord(head.substr(start, kRecordBytes))) {
            return false;
        }
    }
    return true;
}

}  // namespace

Format detectFormat(Bytes head, const std::string& file) {
    const EvtHeader header = parseEvtHeader(head);
    if (!header.evt_version.empty()) {
        return formatFromHeader(header, file);
    }
    refuseForeignFormats(head, file);
    if (header.length > 0) {
        return formatFromHeader(header, file);
    }
    if (looksLikeTextRecording(head)) {
        return Format::Text;
    }
    if (looksLikeRecords(head)) {
        return Format::Records;
    }
    throw RecordingError(
        file, "has an unknown format", "",
        "give a recording in one of the formats records, text, evt2 and evt3; if it is one, give "
        "the format with --input-format");
}

Format formatFromHeader(const EvtHeader& header, const std::string& file) {
    if (header.evt_version == "2") {
        return Format::Evt2;
    }
    if (header.evt_version == "3") {
        return Format::Evt3;
    }
    if (header.evt_version.empty()) {
        throw RecordingError(file, "has a header without an EVT version", "",
                             "give it with --input-format evt2 or --input-format evt3");
    }
    throw RecordingError(file,
                         "is an EVT " + header.evt_version + " recording, which is not supported",
                         "", "convert it to EVT 2 or EVT 3");
}

}  // namespace kelvora::recording
