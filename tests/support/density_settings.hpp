// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/points.hpp"

namespace kelvora::test {

/// What a density-based generator is constructed with, by name.
///
/// By default, two neighbouring pixels make a cluster, and nothing bounds the number of events.
struct DensitySettings {
    static constexpr unsigned long long kUnbounded = std::numeric_limits<unsigned long long>::max();

    int sensor_width = 100;
    int sensor_height = 80;
    float scale_width = 1;
    float scale_height = 1;
    float scale_time = 1;
    EventFilterType filter_type = POLARITY_FREE;
    unsigned long long max_capacity = kUnbounded;
    unsigned long long max_time_length = kUnbounded;
    double eps = 1.5;
    int min_pts = 2;
    int n_jobs = 1;

    DensitySettings& sensor(int width, int height) {
        sensor_width = width;
        sensor_height = height;
        return *this;
    }
    DensitySettings& scales(float width, float height, float time) {
        scale_width = width;
        scale_height = height;
        scale_time = time;
        return *this;
    }
    DensitySettings& filter(EventFilterType type) {
        filter_type = type;
        return *this;
    }
    DensitySettings& capacity(unsigned long long points) {
        max_capacity = points;
        return *this;
    }
    DensitySettings& timeLength(unsigned long long microseconds) {
        max_time_length = microseconds;
        return *this;
    }
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

/// A position of an event, which tests of clusters in the plane leave at the same time.
struct Pixel {
    int x;
    int y;
    unsigned long long timestamp = 1000;
    int polarity = 1;
};

/// Gives a generator an event for each pixel.
template <class Generator>
void feedPixels(Generator& generator, const std::vector<Pixel>& pixels) {
    for (const Pixel& pixel : pixels) {
        const Event2D event(static_cast<unsigned short>(pixel.x),
                            static_cast<unsigned short>(pixel.y),
                            static_cast<unsigned char>(pixel.polarity), pixel.timestamp);
        generator.processEvent(&event);
    }
}

/// The four corners of a box of one pixel's width and height.
inline std::vector<Pixel> squareAt(int x, int y) {
    return {{x, y}, {x + 1, y}, {x, y + 1}, {x + 1, y + 1}};
}

template <class Generator>
std::vector<ClusterGeometry> generateFrom(Generator& generator, std::size_t timestamp = 0) {
    std::vector<ClusterGeometry> clusters;
    generator.generateClusters(timestamp, clusters);
    return clusters;
}

/// Feeds some pixels and clusters them.
template <class Generator>
std::vector<ClusterGeometry> clusterPixels(Generator& generator, const std::vector<Pixel>& pixels) {
    feedPixels(generator, pixels);
    return generateFrom(generator);
}

}  // namespace kelvora::test
