// SPDX-License-Identifier: MIT
#include "reference/cluster_tracker.hpp"

#include <gmock/gmock.h>

#include <cstdint>
#include <vector>

#include "support/tracks.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Model = reference::ClusterTracker;

TEST(ReferenceTracker, FollowsAnObjectAtItsVelocity) {
    Model model(30, 20, 2, 2);
    for (std::uint64_t i = 0; i < 5; ++i) {
        const float x = 100 + 10 * static_cast<float>(i);
        EXPECT_THAT(model.update({square(x, 50, i * kUpdateInterval)}), ElementsAre(1));
    }
    ASSERT_THAT(model.getObjects(), SizeIs(1));
    const Model::Object& object = model.getObjects()[0];
    EXPECT_TRUE(object.is_confirmed);
    EXPECT_EQ(object.hits, 5);
    EXPECT_NEAR(Model::velocity(object, &Model::Sighting::x), 1000, 1e-6);
    EXPECT_NEAR(Model::velocity(object, &Model::Sighting::y), 0, 1e-6);
}

TEST(ReferenceTracker, DropsAnObjectThatItMissesTooOften) {
    Model model(30, 20, 1, 1);
    model.update({square(100, 50, 0)});
    EXPECT_THAT(model.update({}), IsEmpty());
    ASSERT_THAT(model.getObjects(), SizeIs(1));
    EXPECT_EQ(model.getObjects()[0].missed, 1);
    model.update({});
    EXPECT_THAT(model.getObjects(), IsEmpty());
}

TEST(ReferenceTracker, GivesNewObjectsNewIds) {
    Model model(30, 20, 1, 1);
    EXPECT_THAT(model.update({square(100, 50, 0), square(300, 50, 0)}), ElementsAre(1, 2));
    EXPECT_THAT(model.update({square(600, 50, kUpdateInterval), square(301, 50, kUpdateInterval)}),
                ElementsAre(3, 2));
}

TEST(ReferenceTracker, HidesAnObjectInAClusterThatCoversIt) {
    Model model(5, 5, 1, 1);
    model.update({square(100, 50, 0), square(125, 50, 0)});
    const auto ids = model.update({boxAround(112, 50, 60, 30, kUpdateInterval)});
    EXPECT_THAT(ids, ElementsAre(0));
    ASSERT_THAT(model.getObjects(), SizeIs(2));
    for (const Model::Object& object : model.getObjects()) {
        EXPECT_TRUE(object.is_hidden);
        EXPECT_EQ(object.missed, 0);
    }
}

}  // namespace
}  // namespace kelvora::test
