// SPDX-License-Identifier: MIT
#include "recording/formats/unreadable_formats.hpp"

#include <array>
#include <string_view>

namespace kelvora::recording {
namespace {

using namespace std::string_view_literals;

constexpr const char* kConvert = "convert it to text with one event `t x y p` per line";
constexpr const char* kDecompress = "decompress it first";

struct Signature {
    std::string_view magic;  // the bytes a file of this format begins with
    const char* title;
    const char* remedy;
};

constexpr std::array<Signature, 15> kSignatures = {{
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

Format toFormat(const Signature& signature) {
    Format format;
    format.title = signature.title;
    format.recognises = [magic = signature.magic](Bytes head) {
        return head.substr(0, magic.size()) == magic;
    };
    format.remedy = Remedy(signature.remedy);
    return format;
}

}  // namespace

std::vector<Format> unreadableFormats() {
    std::vector<Format> formats;
    formats.reserve(kSignatures.size());
    for (const Signature& signature : kSignatures) {
        formats.push_back(toFormat(signature));
    }
    return formats;
}

}  // namespace kelvora::recording
