// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "simulation/scene.hpp"

namespace kelvora::simulation {

/// The picture that the sensor sees: the log brightness of each pixel, relative to the
/// background's.
class Canvas {
public:
    /// Starts with background only.
    Canvas(int width_, int height_);

    /// Restores the background. \pre the region lies on the sensor
    void clear(const Region& region);

    /// Paints all objects of a scene of the same size, each over the previous ones.
    void paint(const Scene& scene);

    /// The pixels of a row.
    const float* row(int y) const { return brightness.data() + offset(y); }

private:
    std::size_t offset(int y) const { return static_cast<std::size_t>(y) * width; }
    void paint(const SceneObject& object, const Region& region, float level);

    std::size_t width;
    std::vector<float> brightness;
    std::vector<float> coverage;  ///< Of one row. A member to save allocations.
};

}  // namespace kelvora::simulation
