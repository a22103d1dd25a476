// SPDX-License-Identifier: MIT
#pragma once

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/pixels.hpp"
#include "support/point_generator_settings.hpp"
#include "support/points.hpp"

namespace kelvora::test {

/// Named constructor arguments of a density-based generator.
///
/// By default, two neighbouring pixels make a cluster, and the number of events is unlimited.
struct DensitySettings : PointGeneratorSettings<DensitySettings> {
    double eps = 1.5;
    int min_pts = 2;
    int n_jobs = 1;

    DensitySettings& density(double radius, int points) {
        eps = radius;
        min_pts = points;
        return *this;
    }
    DensitySettings& jobs(int threads) {
        n_jobs = threads;
        return *this;
    }

    template <class Kind>
    DensityBasedClusterGenerator<Kind::kDim, typename Kind::T> build() const {
        return {sensor_width, sensor_height,   scale_width, scale_height, scale_time, filter_type,
                max_capacity, max_time_length, eps,         min_pts,      n_jobs};
    }
};

}  // namespace kelvora::test
