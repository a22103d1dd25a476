// SPDX-License-Identifier: MIT
#include "simulation/truth_recorder.hpp"

#include <gtest/gtest.h>

namespace kelvora::simulation {
namespace {

SceneObject squareAt(double x, double y, double speed) {
    return {ObjectKind::kBar, Shape::bar(20, 20), 0.5, {{x, y}, {1, 0}}, {speed, 0}};
}

std::vector<GroundTruth> truthAfter(Scene scene, std::uint64_t duration_us) {
    TruthRecorder recorder;
    recorder.begin(scene);
    scene.advance(duration_us);
    recorder.follow(scene);
    std::vector<GroundTruth> truth;
    recorder.finish(scene, truth);
    return truth;
}

TEST(TruthRecorder, BoxHoldsAllPlacesOfTheInterval) {
    const auto truth = truthAfter(Scene(200, 100, {squareAt(50, 50, 300)}), 10'000);
    ASSERT_EQ(truth.size(), 1U);
    EXPECT_EQ(truth[0].timestamp_us, 10'000U);
    EXPECT_EQ(truth[0].id, 1);
    EXPECT_FLOAT_EQ(truth[0].x, 40);
    EXPECT_FLOAT_EQ(truth[0].width, 23);
    EXPECT_FLOAT_EQ(truth[0].y, 40);
    EXPECT_FLOAT_EQ(truth[0].height, 20);
    EXPECT_FLOAT_EQ(truth[0].speed, 300);
    EXPECT_TRUE(truth[0].moving);
}

TEST(TruthRecorder, BoxIsClippedToTheSensor) {
    const auto truth = truthAfter(Scene(200, 100, {squareAt(195, 95, 0)}), 10'000);
    ASSERT_EQ(truth.size(), 1U);
    EXPECT_FLOAT_EQ(truth[0].x + truth[0].width, 200);
    EXPECT_FLOAT_EQ(truth[0].y + truth[0].height, 100);
    EXPECT_FALSE(truth[0].moving);
}

TEST(TruthRecorder, ObjectsOffTheSensorHaveNoRowAndOthersKeepTheirIds) {
    const auto truth =
        truthAfter(Scene(200, 100, {squareAt(-40, 50, 10), squareAt(50, 50, 10)}), 10'000);
    ASSERT_EQ(truth.size(), 1U);
    EXPECT_EQ(truth[0].id, 2);
}

TEST(Visibility, IsFullInTheOpenAndHalfWhereHalfIsHidden) {
    const auto shares = visibilitiesOf(
        Scene(200, 100, {squareAt(50, 50, 0), squareAt(60, 50, 0), squareAt(100, 50, 0)}));
    EXPECT_NEAR(shares[0], 0.5, 0.01);
    EXPECT_NEAR(shares[1], 1, 1e-6);
    EXPECT_NEAR(shares[2], 1, 1e-6);
}

TEST(Visibility, CountsPartsOffTheSensorAsHidden) {
    const auto shares =
        visibilitiesOf(Scene(200, 100, {squareAt(0, 50, 0), squareAt(200, 100, 0)}));
    EXPECT_NEAR(shares[0], 0.5, 0.01);
    EXPECT_NEAR(shares[1], 0.25, 0.01);
}

TEST(Visibility, IsZeroBehindABiggerObject) {
    SceneObject big = squareAt(50, 50, 0);
    big.shape = Shape::disc(40);
    EXPECT_NEAR(visibilitiesOf(Scene(200, 100, {squareAt(50, 50, 0), big}))[0], 0, 1e-6);
}

}  // namespace
}  // namespace kelvora::simulation
