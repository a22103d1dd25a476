// SPDX-License-Identifier: MIT
#include "drawing/png_file.hpp"

#include <fmt/format.h>
#include <png.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

namespace kelvora::drawing {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

struct PngCleaner {
    void operator()(png_image* image) const { png_image_free(image); }
};
using PngCleanup = std::unique_ptr<png_image, PngCleaner>;

png_image emptyImage() {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    return image;
}

// Use the system's message for disk errors, and libpng's for errors in the picture.
std::string failureReason(int error, const png_image& image) {
    return error != 0 ? std::generic_category().message(error) : std::string{image.message};
}

// Never remove devices and pipes.
void removeRegularFile(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::is_regular_file(path, ignored)) {
        std::filesystem::remove(path, ignored);
    }
}

// Returns the reason for a failure; empty on success.
std::string tryToWrite(const std::filesystem::path& path, const cv::Mat& picture) {
    png_image image = emptyImage();
    image.width = static_cast<png_uint_32>(picture.cols);
    image.height = static_cast<png_uint_32>(picture.rows);
    image.format = PNG_FORMAT_BGR;
    const auto row_stride = static_cast<png_int_32>(picture.step[0]);

    errno = 0;
    File file{std::fopen(path.c_str(), "wb")};
    if (!file) {
        return failureReason(errno, image);
    }
    const PngCleanup cleanup{&image};
    const bool written =
        png_image_write_to_stdio(&image, file.get(), 0, picture.data, row_stride, nullptr) != 0;
    // A full disk is often only detected when the last bytes are flushed.
    const bool closed = std::fclose(file.release()) == 0;
    if (written && closed) {
        return "";
    }
    std::string reason = failureReason(errno, image);
    removeRegularFile(path);
    return reason;
}

[[noreturn]] void failToRead(const std::filesystem::path& path, int error, const png_image& image) {
    throw std::runtime_error(fmt::format("{}: cannot read the picture ({}), choose a PNG file",
                                         path.string(), failureReason(error, image)));
}

}  // namespace

void writePng(const std::filesystem::path& file, const cv::Mat& picture) {
    if (picture.empty() || picture.type() != CV_8UC3) {
        throw std::invalid_argument("a picture is a matrix of type CV_8UC3 that is not empty");
    }
    const std::string reason = tryToWrite(file, picture);
    if (!reason.empty()) {
        throw std::runtime_error(fmt::format(
            "{}: cannot write the picture ({}), choose a file in a directory that is writable and "
            "has space left",
            file.string(), reason));
    }
}

cv::Mat readPng(const std::filesystem::path& file) {
    png_image image = emptyImage();
    const PngCleanup cleanup{&image};
    errno = 0;
    if (png_image_begin_read_from_file(&image, file.c_str()) == 0) {
        failToRead(file, errno, image);
    }
    image.format = PNG_FORMAT_BGR;
    cv::Mat picture(static_cast<int>(image.height), static_cast<int>(image.width), CV_8UC3);
    if (png_image_finish_read(&image, nullptr, picture.data,
                              static_cast<png_int_32>(picture.step[0]), nullptr) == 0) {
        failToRead(file, 0, image);
    }
    return picture;
}

}  // namespace kelvora::drawing
