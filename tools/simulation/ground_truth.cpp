// SPDX-License-Identifier: MIT
#include "simulation/ground_truth.hpp"

#include <fmt/format.h>

namespace kelvora::simulation {

std::string groundTruthCsvHeader() {
    return "timestamp_us,id,kind,x,y,width,height,visibility,moving,speed_px_s";
}

std::string toCsv(const GroundTruth& truth) {
    return fmt::format("{},{},{},{:.2f},{:.2f},{:.2f},{:.2f},{:.3f},{:d},{:.1f}",
                       truth.timestamp_us, truth.id, nameOf(truth.kind), truth.x, truth.y,
                       truth.width, truth.height, truth.visibility, truth.moving, truth.speed);
}

}  // namespace kelvora::simulation
