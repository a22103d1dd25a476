// SPDX-License-Identifier: MIT
#pragma once

#include "simulation/scene.hpp"
#include "simulation/scene_options.hpp"

namespace kelvora::simulation {

/// The scene for a seed: lights in the background, then discs, bars and polygons. Sizes and speeds
/// scale with the sensor.
///
/// On 640 x 480 pixels the moving objects measure 32 to 80 pixels and move at 90 to 600 pixels per
/// second; both ranges are divided among them, so that there are always small and large, slow and
/// fast objects. About half are darker than the background. Slow objects have high contrast,
/// because otherwise their edges would hardly make events. Bars lean across their path, and every
/// second bar and polygon rotates.
///
/// \throws std::invalid_argument as `SceneOptions::validate`
Scene randomScene(const SceneOptions& options);

}  // namespace kelvora::simulation
