// SPDX-License-Identifier: MIT
#pragma once

#include "simulation/scene.hpp"
#include "simulation/scene_options.hpp"

namespace kelvora::simulation {

/// The scene of a seed: lights behind, then discs, bars and polygons, all with their sizes and
/// speeds scaled to the sensor.
///
/// On 640 x 480 pixels the moving objects measure 32 to 80 pixels and move at 90 to 600 pixels per
/// second; both ranges are divided among them, so that small and big, slow and fast ones are always
/// there. About half are darker than the background. Slow ones have high contrast, since their
/// edges would hardly make events otherwise. Bars lean across their path, and every second bar
/// and polygon turns.
///
/// \throws std::invalid_argument as `SceneOptions::validate`
Scene randomScene(const SceneOptions& options);

}  // namespace kelvora::simulation
