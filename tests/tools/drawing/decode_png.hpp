// SPDX-License-Identifier: MIT
#pragma once

#include <png.h>

#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>

namespace kelvora::drawing {

/// The picture in a PNG file, as `CV_8UC3` in the order blue, green, red.
inline cv::Mat decodePng(const std::string& bytes) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) == 0) {
        throw std::runtime_error(image.message);
    }
    image.format = PNG_FORMAT_BGR;
    cv::Mat picture(static_cast<int>(image.height), static_cast<int>(image.width), CV_8UC3);
    // Frees the memory of the image, too.
    if (png_image_finish_read(&image, nullptr, picture.data,
                              static_cast<png_int_32>(picture.step[0]), nullptr) == 0) {
        throw std::runtime_error(image.message);
    }
    return picture;
}

}  // namespace kelvora::drawing
