// SPDX-License-Identifier: MIT
#include "simulation/canvas.hpp"

#include <algorithm>

namespace kelvora::simulation {

Canvas::Canvas(int width_, int height_)
    : width(static_cast<std::size_t>(width_)),
      brightness(width * static_cast<std::size_t>(height_)),
      coverage(width) {}

void Canvas::clear(const Region& region) {
    if (isEmpty(region)) {
        return;
    }
    for (int y = region.y_begin; y < region.y_end; ++y) {
        float* const pixels = brightness.data() + offset(y);
        std::fill(pixels + region.x_begin, pixels + region.x_end, 0.0F);
    }
}

void Canvas::paint(const Scene& scene) {
    for (const SceneObject& object : scene.objects()) {
        const Region region = scene.regionOnSensor(object);
        if (!isEmpty(region)) {
            paint(object, region, object.brightness(scene.timeUs()));
        }
    }
}

void Canvas::paint(const SceneObject& object, const Region& region, float level) {
    const int count = region.x_end - region.x_begin;
    for (int y = region.y_begin; y < region.y_end; ++y) {
        object.shape.coverRow(object.pose, y, region.x_begin, region.x_end, coverage.data());
        float* const pixels = brightness.data() + offset(y) + region.x_begin;
        for (int i = 0; i < count; ++i) {
            pixels[i] += coverage[static_cast<std::size_t>(i)] * (level - pixels[i]);
        }
    }
}

}  // namespace kelvora::simulation
