// SPDX-License-Identifier: MIT
#include "drawing/png_encoder.hpp"

#include <fmt/format.h>
#include <png.h>

#include <memory>
#include <stdexcept>

namespace kelvora::drawing {

namespace {

struct PngCleaner {
    void operator()(png_image* image) const { png_image_free(image); }
};
using PngCleanup = std::unique_ptr<png_image, PngCleaner>;

}  // namespace

std::string encodePng(const cv::Mat& picture) {
    if (picture.empty() || picture.type() != CV_8UC3) {
        throw std::invalid_argument("a picture is a matrix of type CV_8UC3 that is not empty");
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.cols);
    image.height = static_cast<png_uint_32>(picture.rows);
    image.format = PNG_FORMAT_BGR;
    const PngCleanup cleanup(&image);
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::string bytes(size, '\0');
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.data,
                                  static_cast<png_int_32>(picture.step[0]), nullptr) == 0) {
        throw std::runtime_error(fmt::format("a picture cannot be encoded ({})", image.message));
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace kelvora::drawing
