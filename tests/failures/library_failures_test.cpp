// SPDX-License-Identifier: MIT
// Generators whose calls fail: allocations of OpenCV and starts of threads, too. The tests of each
// class make only `operator new` fail.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <opencv2/core/mat.hpp>
#include <vector>

#include "failures/failure_checks.hpp"
#include "kelvora/grid_based_cluster_generator.hpp"
#include "support/centroid_settings.hpp"
#include "support/density_settings.hpp"
#include "support/points.hpp"

namespace kelvora::test {
namespace {

using failures::Kind;
using Numbers = std::vector<double>;
using Points = PointKind<3, double>;

void append(Numbers& numbers, const std::vector<ClusterGeometry>& clusters) {
    for (const ClusterGeometry& cluster : clusters) {
        numbers.insert(numbers.end(), {cluster.x, cluster.y, cluster.width, cluster.height,
                                       static_cast<double>(cluster.timestamp)});
    }
}

template <class Number>
void append(Numbers& numbers, const std::vector<Number>& more) {
    numbers.insert(numbers.end(), more.begin(), more.end());
}

/// Events around a few spots.
std::vector<Event2D> someEvents() {
    Random random(3);
    std::vector<Event2D> events = randomEvents(random, 100, 80, 400);
    for (std::size_t i = 0; i < events.size(); ++i) {
        events[i].timestamp = 1000 + 10 * i;
    }
    return events;
}

/// Feeds events to a generator and reads everything that it found.
template <class Generator>
Numbers everythingFrom(Generator& generator) {
    static const std::vector<Event2D> events = someEvents();
    generator.processEvents(events.data(), events.size() / 2);
    for (std::size_t i = events.size() / 2; i < events.size(); ++i) {
        generator.processEvent(&events[i]);
    }
    std::vector<ClusterGeometry> clusters;
    generator.generateClusters(10'000, clusters);
    EXPECT_FALSE(clusters.empty());
    Numbers numbers;
    append(numbers, clusters);
    return numbers;
}

template <class Generator>
Numbers everythingFromPoints(Generator& generator) {
    Numbers numbers = everythingFrom(generator);
    std::vector<int> labels;
    generator.getClusterLabels(labels);
    append(numbers, labels);
    std::vector<Points::Points> points;
    generator.getClusterPoints(points, true);
    for (const auto& cluster : points) {
        for (const auto& point : cluster) {
            numbers.insert(numbers.end(), point.coordinates.begin(), point.coordinates.end());
        }
    }
    return numbers;
}

/// A generator whose first window has been clustered.
template <class Settings>
auto usedGenerator(const Settings& settings) {
    using Generator = decltype(settings.template build<Points>());
    struct Used {
        explicit Used(const Settings& given) : generator(given.template build<Points>()) {
            everythingFrom(generator);
        }
        Generator generator;
    };
    return std::make_unique<Used>(settings);
}

/// The events before the exception are forgotten or count for the next call.
const auto kNextWindow = [](auto& used) {
    std::vector<ClusterGeometry> clusters;
    used->generator.generateClusters(0, clusters);
};

const auto kWindow = [](auto& used) { return everythingFromPoints(used->generator); };

TEST(AGridBasedGenerator, FindsTheRightClustersAfterAFailure) {
    struct Used {
        GridBasedClusterGenerator generator{100, 80, 5, 4, 40, 1, POLARITY_FREE, true, 2};
    };
    expectRightResultsAfterFailures(
        UseOfAnObject{[] { return std::make_unique<Used>(); },
                      [](auto& used) { return everythingFrom(used->generator); }, kNextWindow},
        {Kind::Allocation});
}

TEST(ADensityBasedGenerator, FindsTheRightClustersAfterAFailure) {
    const auto settings = DensitySettings().scales(1, 1, 0.001F).density(3, 4);
    expectRightResultsAfterFailures(
        UseOfAnObject{[&] { return usedGenerator(settings); }, kWindow, kNextWindow},
        {Kind::Allocation});
}

TEST(ADensityBasedGenerator, WithACapacityFindsTheRightClustersAfterAFailure) {
    const auto settings = DensitySettings().scales(1, 1, 0.001F).density(3, 4).capacity(150);
    expectRightResultsAfterFailures(
        UseOfAnObject{[&] { return usedGenerator(settings); }, kWindow, kNextWindow},
        {Kind::Allocation});
}

TEST(ADensityBasedGenerator, FindsTheRightClustersWithThreadsAfterAFailure) {
    const auto settings = DensitySettings().scales(1, 1, 0.001F).density(3, 4).jobs(3);
    const auto window = [](auto& used) {
        Numbers numbers = everythingFromPoints(used->generator);
        std::sort(numbers.begin(), numbers.end());  // The order differs from run to run.
        return numbers;
    };
    expectRightResultsAfterFailures(
        UseOfAnObject{[&] { return usedGenerator(settings); }, window, kNextWindow},
        {Kind::Allocation, Kind::Thread});
}

TEST(ADensityBasedGenerator, GivesTheRightMatricesAfterAFailure) {
    const auto settings = DensitySettings().scales(1, 1, 0.001F).density(3, 4);
    const auto read = [](auto& used) {
        Numbers numbers;
        std::vector<cv::Mat> matrices;
        used->generator.getClusterPoints(matrices, false);
        for (const cv::Mat& matrix : matrices) {
            numbers.push_back(matrix.at<double>(0, 0));
        }
        return numbers;
    };
    // OpenCV loses the elements of a matrix if it cannot allocate the header.
    constexpr long kMostLost = 1;
    expectRightResultsAfterFailures(
        UseOfAnObject{[&] { return usedGenerator(settings); }, read, kNothing}, {Kind::Allocation},
        kMostLost);
}

TEST(ACentroidBasedGenerator, FindsTheRightClustersAfterAFailure) {
    // With a single centroid, the random first one does not matter.
    const auto settings = CentroidSettings().clusters(1);
    expectRightResultsAfterFailures(
        UseOfAnObject{[&] { return usedGenerator(settings); }, kWindow, kNextWindow},
        {Kind::Allocation});
}

}  // namespace
}  // namespace kelvora::test
