// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <random>
#include <string>

#include "support/points.hpp"

/// \file
/// Random sets of points of many kinds, for comparing one way of clustering with another.

namespace kelvora::test {

/// Distribution of the points of a set.
enum class Scatter {
    kPixels,       ///< Whole numbers, many points at the same place.
    kTenths,       ///< On a lattice that floating-point numbers cannot represent.
    kUniform,      ///< Anywhere, also below zero.
    kClumps,       ///< Dense clumps in empty space.
    kLongTime,     ///< Whole pixels, with a last axis fifty times longer.
    kLargeOffset,  ///< As far from the origin as microseconds since 1970.
    kHotPixels,    ///< A few positions with many points, and single points.
};
constexpr std::array<Scatter, 7> kScatters = {
    Scatter::kPixels,   Scatter::kTenths,      Scatter::kUniform,  Scatter::kClumps,
    Scatter::kLongTime, Scatter::kLargeOffset, Scatter::kHotPixels};

template <class Kind>
struct DensityCase {
    using T = typename Kind::T;

    DensityCase(Random& random, Scatter scatter_, std::size_t most_points) : scatter(scatter_) {
        const auto count = random() % most_points;
        side = std::pow(static_cast<double>(count + 1), 1.0 / Kind::kDim) * uniform(random, 0.3, 3);
        for (int clump = 0; clump < 5; ++clump) {
            centers.push_back(
                {uniform(random, 0, side), uniform(random, 0, side), uniform(random, 0, side)});
        }
        for (std::size_t i = 0; i < count; ++i) {
            points.push_back(place(random));
        }
        spoil(random);
        eps = radius(random);
        min_pts = random() % 8 == 0 ? static_cast<int>(random() % (count + 2)) + 1
                                    : randomInt(random, 1, 12);
    }

    Scatter scatter;
    typename Kind::Points points;
    double eps;
    int min_pts;

private:
    using Place = std::array<double, 3>;

    static double uniform(Random& random, double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    }

    typename Kind::Point place(Random& random) const {
        Place p = {uniform(random, -side, side), uniform(random, -side, side),
                   uniform(random, -side, side)};
        const Place& center = centers[random() % centers.size()];
        for (std::size_t axis = 0; axis < p.size(); ++axis) {
            const bool is_last = axis + 1 == Kind::kDim;
            switch (scatter) {
                case Scatter::kPixels:
                    p[axis] = std::floor(p[axis]);
                    break;
                case Scatter::kTenths:
                    p[axis] = std::floor(p[axis]) * 0.1;
                    break;
                case Scatter::kUniform:
                    break;
                case Scatter::kClumps:
                    p[axis] = center[axis] + p[axis] * p[axis] / side / 5;
                    break;
                case Scatter::kLongTime:
                    p[axis] = is_last ? p[axis] * 50 : std::floor(p[axis]);
                    break;
                case Scatter::kLargeOffset:
                    p[axis] = is_last ? 1.6e15 + p[axis] * offsetStep() : std::floor(p[axis]);
                    break;
                case Scatter::kHotPixels:
                    p[axis] = random() % 4 == 0 ? p[axis] : std::floor(center[axis]);
                    break;
            }
        }
        return at<Kind>(p[0], p[1], p[2]);
    }

    /// Approximate resolution of the type at that distance.
    static double offsetStep() { return 1.6e15 * std::numeric_limits<T>::epsilon(); }

    /// Sometimes moves some of the points elsewhere.
    void spoil(Random& random) {
        if (random() % 4 != 0) {
            return;
        }
        const T infinity = std::numeric_limits<T>::infinity();
        const std::array<T, 4> values = {infinity, -infinity, std::numeric_limits<T>::quiet_NaN(),
                                         std::numeric_limits<T>::max() / 4};
        for (auto& point : points) {
            if (random() % 16 == 0) {
                point.coordinates[random() % Kind::kDim] = values[random() % values.size()];
            }
        }
    }

    double radius(Random& random) const {
        constexpr std::array<double, 9> kStrange = {0,
                                                    1e-30,
                                                    1e-12,
                                                    1e6,
                                                    1e19,
                                                    1e30,
                                                    -1.5,
                                                    std::numeric_limits<double>::infinity(),
                                                    std::numeric_limits<double>::quiet_NaN()};
        if (random() % 8 == 0) {
            return kStrange[random() % kStrange.size()];
        }
        const double unit = scatter == Scatter::kTenths ? 0.1 : 1;
        if (random() % 2 == 0) {
            return unit * uniform(random, 0.2, 5);
        }
        // A distance between pixels, or one of the adjacent numbers.
        const T exact = static_cast<T>(unit * std::sqrt(1.0 + static_cast<double>(random() % 30)));
        const std::array<T, 3> toward = {T{0}, exact, 2 * exact};
        return static_cast<double>(std::nextafter(exact, toward[random() % toward.size()]));
    }

    double side;
    std::vector<Place> centers;
};

template <class Kind>
std::ostream& operator<<(std::ostream& out, const DensityCase<Kind>& set) {
    return out << set.points.size() << " points, scatter " << static_cast<int>(set.scatter)
               << ", eps " << set.eps << ", min_pts " << set.min_pts;
}

/// Calls `compare(set)` for `count` random sets of each scatter, until a check fails.
///
/// \param compare  Returns whether the set has clusters.
/// \param fewest  Sets of each scatter that must have clusters.
template <class Kind, class Compare>
void forRandomCases(int count, std::size_t most_points, int fewest, const Compare& compare) {
    for (const Scatter scatter : kScatters) {
        int with_clusters = 0;
        for (int round = 0; round < count; ++round) {
            Random random(static_cast<std::uint64_t>(round));
            const DensityCase<Kind> set(random, scatter, most_points);
            with_clusters += compare(set) ? 1 : 0;
            ASSERT_FALSE(::testing::Test::HasFailure()) << "round " << round << ": " << set;
        }
        EXPECT_GE(with_clusters, fewest);
    }
}

}  // namespace kelvora::test
