// SPDX-License-Identifier: MIT
// How well the grid method with its default parameters finds the objects of simulated scenes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <opencv2/core/types.hpp>
#include <vector>

#include "recording/window_slicer.hpp"
#include "sessions/grid_method.hpp"
#include "simulation/event_simulator.hpp"

namespace kelvora {
namespace {

using simulation::GroundTruth;

constexpr float kCrowded = 20.0F;  // pixels

struct Detection {
    int objects = 0;           ///< Moving objects with no other nearby, once per window.
    int objects_found = 0;     ///< Objects that a cluster covers well.
    int clusters = 0;          ///< Once per window.
    int clusters_of_none = 0;  ///< Clusters that touch no object.

    double recall() const { return static_cast<double>(objects_found) / objects; }
    double falseShare() const { return static_cast<double>(clusters_of_none) / clusters; }
};

cv::Rect2f boxOf(const GroundTruth& object) {
    return {object.x, object.y, object.width, object.height};
}

float intersectionOverUnion(const cv::Rect2f& a, const cv::Rect2f& b) {
    const float both = (a & b).area();
    return both / (a.area() + b.area() - both);
}

cv::Rect2f grown(const cv::Rect2f& box, float margin) {
    return {box.x - margin, box.y - margin, box.width + 2 * margin, box.height + 2 * margin};
}

bool isAlone(const GroundTruth& object, const std::vector<GroundTruth>& truth) {
    return std::none_of(truth.begin(), truth.end(), [&](const GroundTruth& other) {
        return other.id != object.id && (grown(boxOf(object), kCrowded) & boxOf(other)).area() > 0;
    });
}

void score(const std::vector<GroundTruth>& truth, const std::vector<ClusterGeometry>& clusters,
           Detection& detection) {
    for (const GroundTruth& object : truth) {
        if (!object.moving || !isAlone(object, truth)) {
            continue;
        }
        ++detection.objects;
        detection.objects_found +=
            std::any_of(clusters.begin(), clusters.end(), [&](const ClusterGeometry& cluster) {
                return intersectionOverUnion(boxOf(object), cluster.get2DBoundingBox()) >= 0.5F;
            });
    }
    for (const ClusterGeometry& cluster : clusters) {
        ++detection.clusters;
        detection.clusters_of_none +=
            std::none_of(truth.begin(), truth.end(), [&](const GroundTruth& object) {
                return (boxOf(object) & cluster.get2DBoundingBox()).area() > 0;
            });
    }
}

Detection detect(std::uint64_t seed) {
    simulation::SceneOptions scene;
    scene.seed = seed;
    simulation::EventSimulator simulator(scene);
    tool::GridMethod method({}, {scene.width, scene.height});
    Detection detection;
    std::vector<Event2D> events;
    std::vector<GroundTruth> truth;
    tool::WindowClusters found;
    while (simulator.step(events, truth)) {
        const recording::Window window{0, 0, events.data(), events.data() + events.size()};
        method.cluster(window, found);
        score(truth, found.clusters, detection);
        events.clear();
        truth.clear();
    }
    return detection;
}

class GridDetection : public testing::TestWithParam<std::uint64_t> {};

TEST_P(GridDetection, CoversNearlyAllObjectsAndLittleElse) {
    const Detection detection = detect(GetParam());
    RecordProperty("objects", detection.objects);
    EXPECT_GT(detection.objects, 500);
    EXPECT_GE(detection.recall(), 0.95);
    EXPECT_LE(detection.falseShare(), 0.05);
}

INSTANTIATE_TEST_SUITE_P(Seeds, GridDetection, testing::Values(1, 2, 3, 7));

}  // namespace
}  // namespace kelvora
