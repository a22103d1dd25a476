// SPDX-License-Identifier: MIT
#include "drawing/png_file.hpp"

#include <fmt/format.h>
#include <png.h>

#include <cerrno>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>

#include "recording/output_file.hpp"

namespace kelvora::drawing {

namespace {

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

[[noreturn]] void failToRead(const std::filesystem::path& path, int error, const png_image& image) {
    throw std::runtime_error(fmt::format("{}: cannot read the picture ({}), choose a PNG file",
                                         path.string(), failureReason(error, image)));
}

}  // namespace

std::string encodePng(const cv::Mat& picture) {
    if (picture.empty() || picture.type() != CV_8UC3) {
        throw std::invalid_argument("a picture is a matrix of type CV_8UC3 that is not empty");
    }
    png_image image = emptyImage();
    image.width = static_cast<png_uint_32>(picture.cols);
    image.height = static_cast<png_uint_32>(picture.rows);
    image.format = PNG_FORMAT_BGR;
    const PngCleanup cleanup{&image};
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.data,
                                  static_cast<png_int_32>(picture.step[0]), nullptr) == 0) {
        throw std::runtime_error(fmt::format("a picture cannot be encoded ({})", image.message));
    }
    bytes.resize(size);
    return bytes;
}

void writePng(const std::filesystem::path& path, const cv::Mat& picture,
              const recording::WriteOptions& options) {
    const std::string bytes = encodePng(picture);
    recording::OutputFile file(path, options);
    file.write(bytes);
    file.close();
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
