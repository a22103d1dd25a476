// SPDX-License-Identifier: MIT
#include "simulation/ground_truth.hpp"

#include <gtest/gtest.h>

namespace kelvora::simulation {
namespace {

TEST(GroundTruth, RowsOfTheFileHaveTheColumnsOfItsHeader) {
    const GroundTruth truth{20'000, 3,      ObjectKind::kPolygon, 1.5F, 2.25F, 30, 40.125F, 0.5F,
                            true,   123.44F};
    EXPECT_EQ(groundTruthCsvHeader(),
              "timestamp_us,id,kind,x,y,width,height,visibility,moving,speed_px_s");
    EXPECT_EQ(toCsv(truth), "20000,3,polygon,1.50,2.25,30.00,40.12,0.500,1,123.4");
}

TEST(GroundTruth, EveryKindHasAName) {
    EXPECT_EQ(nameOf(ObjectKind::kDisc), "disc");
    EXPECT_EQ(nameOf(ObjectKind::kBar), "bar");
    EXPECT_EQ(nameOf(ObjectKind::kPolygon), "polygon");
    EXPECT_EQ(nameOf(ObjectKind::kLight), "light");
}

}  // namespace
}  // namespace kelvora::simulation
