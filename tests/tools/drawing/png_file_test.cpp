// SPDX-License-Identifier: MIT
#include "drawing/png_file.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>

#include "support/temporary_directory.hpp"

namespace kelvora::drawing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;

class PngFile : public testing::Test {
protected:
    test::TemporaryDirectory temporary;
    const std::filesystem::path& directory = temporary.path();
};

cv::Mat noise(int width, int height) {
    cv::Mat picture(height, width, CV_8UC3);
    cv::RNG{7}.fill(picture, cv::RNG::UNIFORM, 0, 256);
    return picture;
}

TEST_F(PngFile, ReadsBackAWrittenPicture) {
    const cv::Mat picture = noise(123, 45);
    writePng(directory / "a.png", picture);
    const cv::Mat read = readPng(directory / "a.png");

    ASSERT_EQ(read.size(), picture.size());
    ASSERT_EQ(read.type(), CV_8UC3);
    EXPECT_EQ(cv::norm(read, picture, cv::NORM_INF), 0.0);
}

TEST_F(PngFile, WritesAPartOfAMatrixWhoseRowsLieApart) {
    const cv::Mat part = noise(100, 50)(cv::Rect{10, 5, 30, 20});
    writePng(directory / "a.png", part);

    EXPECT_EQ(cv::norm(readPng(directory / "a.png"), part, cv::NORM_INF), 0.0);
}

TEST_F(PngFile, WritesTheSignatureOfPng) {
    writePng(directory / "a.png", noise(3, 3));
    std::string start(8, ' ');
    std::ifstream{directory / "a.png", std::ios::binary}.read(start.data(), 8);

    EXPECT_EQ(start, "\x89PNG\r\n\x1a\n");
}

TEST_F(PngFile, ReplacesAnExistingFile) {
    writePng(directory / "a.png", noise(200, 200));
    writePng(directory / "a.png", noise(3, 4));

    EXPECT_EQ(readPng(directory / "a.png").size(), cv::Size(3, 4));
}

TEST_F(PngFile, SaysWhichFileCannotBeWrittenAndWhy) {
    const std::filesystem::path file = directory / "missing" / "a.png";

    EXPECT_THAT(
        [&] { writePng(file, noise(3, 3)); },
        ThrowsMessage<std::runtime_error>(StartsWith(
            file.string() + ": cannot be created (No such file or directory), check the path")));
}

TEST_F(PngFile, RefusesADirectoryAndLeavesItAlone) {
    EXPECT_THAT([&] { writePng(directory, noise(3, 3)); },
                ThrowsMessage<std::runtime_error>(HasSubstr("(Is a directory)")));
    EXPECT_TRUE(std::filesystem::is_directory(directory));
}

TEST_F(PngFile, ReportsAFullDiskAndLeavesTheDeviceAlone) {
    if (!std::filesystem::exists("/dev/full")) {
        GTEST_SKIP() << "no /dev/full here";
    }
    EXPECT_THAT([&] { writePng("/dev/full", noise(3, 3)); },
                ThrowsMessage<std::runtime_error>(HasSubstr("(No space left on device)")));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full"));
}

TEST_F(PngFile, RefusesEmptyAndGreyPictures) {
    EXPECT_THROW(writePng(directory / "a.png", cv::Mat{}), std::invalid_argument);
    EXPECT_THROW(writePng(directory / "a.png", cv::Mat::zeros(3, 3, CV_8UC1)),
                 std::invalid_argument);
    EXPECT_FALSE(std::filesystem::exists(directory / "a.png"));
}

TEST_F(PngFile, SaysWhichFileCannotBeReadAndWhy) {
    const std::filesystem::path file = directory / "a.png";
    EXPECT_THAT([&] { readPng(file); },
                ThrowsMessage<std::runtime_error>(StartsWith(
                    file.string() + ": cannot read the picture (No such file or directory), ")));

    std::ofstream{file} << "certainly not a picture";
    EXPECT_THAT([&] { readPng(file); }, ThrowsMessage<std::runtime_error>(StartsWith(
                                            file.string() + ": cannot read the picture (")));
}

}  // namespace
}  // namespace kelvora::drawing
