// SPDX-License-Identifier: MIT
// How well the tracker with default parameters follows the objects of a simulated scene, with
// clusters of either method with default parameters.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "kelvora/cluster_tracker.hpp"
#include "recording/window_slicer.hpp"
#include "scoring/tracking_score.hpp"
#include "sessions/cluster_rows.hpp"
#include "sessions/density_method.hpp"
#include "sessions/grid_method.hpp"
#include "simulation/event_simulator.hpp"

namespace kelvora {
namespace {

using simulation::GroundTruth;

scoring::TruthBox truthBox(const GroundTruth& truth) {
    const scoring::Box box = {truth.x, truth.y, truth.width, truth.height};
    return {truth.timestamp_us, box, truth.id, truth.visibility, truth.moving};
}

scoring::Frame frameOf(const std::vector<GroundTruth>& truth,
                       const std::vector<ClusterTracker::Track>& tracks) {
    scoring::Frame frame;
    for (const GroundTruth& object : truth) {
        frame.truth.push_back(truthBox(object));
    }
    for (const ClusterTracker::Track& track : tracks) {
        if (tool::isFollowed(track)) {
            const ClusterGeometry& box = track.box;
            frame.clusters.push_back({box.timestamp,
                                      {box.x, box.y, box.width, box.height},
                                      static_cast<std::uint64_t>(track.id)});
        }
    }
    return frame;
}

scoring::ScoreFigures follow(const simulation::SceneOptions& scene, tool::ClusteringMethod& method,
                             ClusterTracker tracker) {
    scoring::ScoreOptions options;
    options.has_tracks = true;
    scoring::TrackingScore score(options);
    simulation::EventSimulator simulator(scene);
    std::vector<Event2D> events;
    std::vector<GroundTruth> truth;
    tool::WindowClusters found;
    recording::Window window;
    while (simulator.step(events, truth)) {
        window.end_time = window.start_time + scene.truth_interval_us;
        window.first = events.data();
        window.last = events.data() + events.size();
        method.cluster(window, found);
        tracker.update(found.clusters);
        score.add(frameOf(truth, tracker.getTracks()));
        window.start_time = window.end_time;
        events.clear();
        truth.clear();
    }
    return score.figures();
}

class TrackingByMethod : public testing::TestWithParam<std::string> {
protected:
    static std::unique_ptr<tool::ClusteringMethod> makeMethod(recording::SensorSize sensor) {
        if (GetParam() == "density") {
            return tool::makeDensityMethod({}, sensor);
        }
        return tool::makeGridMethod({}, sensor);
    }
};

TEST_P(TrackingByMethod, FollowsNearlyAllObjectsAndHardlyEverConfusesThem) {
    const simulation::SceneOptions scene;
    const scoring::ScoreFigures figures =
        follow(scene, *makeMethod({scene.width, scene.height}), ClusterTracker());
    RecordProperty("mota", std::to_string(figures.mota().value()));
    RecordProperty("switches", static_cast<int>(figures.switches));
    EXPECT_GT(figures.objects, 1'000U);
    EXPECT_GE(figures.mota().value(), 0.85);
    EXPECT_LE(figures.switchesPerTenSeconds(scene.truth_interval_us).value(), 2.0);
}

INSTANTIATE_TEST_SUITE_P(Methods, TrackingByMethod, testing::Values("grid", "density"));

// The bounds above distinguish good tracks from bad ones.
TEST(Tracking, LosesObjectsIfNoneMayBeMissedOrChange) {
    const simulation::SceneOptions scene;
    tool::GridMethod method({}, {scene.width, scene.height});
    const scoring::ScoreFigures figures = follow(scene, method, ClusterTracker(2, 2, 0, 3));
    EXPECT_LT(figures.mota().value(), 0.8);
    EXPECT_GT(figures.switchesPerTenSeconds(scene.truth_interval_us).value(), 2.0);
}

}  // namespace
}  // namespace kelvora
