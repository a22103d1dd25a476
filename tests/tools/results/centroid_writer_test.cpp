// SPDX-License-Identifier: MIT
#include "results/centroid_writer.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "support/temporary_directory.hpp"

namespace kelvora::tool {
namespace {

TEST(CentroidWriter, WritesOneRowPerCentroid) {
    const test::TemporaryDirectory directory;
    const auto path = directory.file("centroids.csv");
    {
        WindowClusters found;
        found.time_origin = 1'615'211'683'000'000;
        found.centroids = {{1.5, 20.1234, {}, 7}, {30, 40, 5.6, 8}};
        CentroidWriter writer(path);
        writer.write(1'615'211'683'010'000, found);
        writer.close();
    }
    EXPECT_EQ(test::contentOf(path),
              "timestamp_us,cluster,x,y,time_us,size\n"
              "1615211683010000,0,1.500,20.123,-1,7\n"
              "1615211683010000,1,30.000,40.000,1615211683000006,8\n");
}

TEST(CentroidWriter, ReportsAFileThatCannotBeWritten) {
    EXPECT_THROW(CentroidWriter("/nowhere/centroids.csv"), std::runtime_error);
}

}  // namespace
}  // namespace kelvora::tool
