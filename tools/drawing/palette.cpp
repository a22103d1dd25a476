// SPDX-License-Identifier: MIT
#include "drawing/palette.hpp"

#include <array>

namespace kelvora::drawing {

cv::Vec3b idColour(std::size_t id) {
    // Neighbours in the list differ in lightness as well as in hue.
    static const std::array<cv::Vec3b, kIdColourCount> kColours = {{{66, 228, 240},   // yellow
                                                                    {167, 121, 204},  // purple
                                                                    {115, 158, 0},    // green
                                                                    {255, 255, 255},  // white
                                                                    {0, 94, 213},     // vermilion
                                                                    {233, 180, 86},   // sky blue
                                                                    {0, 159, 230},    // orange
                                                                    {178, 114, 0}}};  // blue
    return kColours[id % kColours.size()];
}

}  // namespace kelvora::drawing
