// SPDX-License-Identifier: MIT
#include "reference/point_intake.hpp"

#include <gmock/gmock.h>

#include <vector>

#include "support/feeding.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

const std::vector<Event2D> kEvents = {{3, 4, 1, 1000}, {5, 6, 2, 1001}, {7, 8, 0, 3000}};

TEST(ReferenceIntake, AppendsEventsOfEitherPolarity) {
    reference::PointIntake<3> intake(10, 1000, 0.5F);
    feedOneByOne(intake, kEvents);
    intake.processEvent(nullptr);
    ASSERT_THAT(intake.getPoints(), SizeIs(2));
    EXPECT_THAT(intake.getPoints()[0].coordinates, ElementsAre(3, 4, 500));
    EXPECT_THAT(intake.getPoints()[1].coordinates, ElementsAre(7, 8, 1500));
    EXPECT_EQ(intake.getEventCount(), 1U);
}

TEST(ReferenceIntake, ForgetsPointsButNotItsCount) {
    reference::PointIntake<2> intake(10, 10'000, 1);
    feedOneByOne(intake, kEvents);
    EXPECT_THAT(intake.getPoints()[1].coordinates, ElementsAre(7, 8));
    intake.clearPoints();
    EXPECT_THAT(intake.getPoints(), IsEmpty());
    EXPECT_EQ(intake.getEventCount(), 2U);
}

}  // namespace
}  // namespace kelvora::test
