// SPDX-License-Identifier: MIT
#include "command_line/cluster_writer.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace kelvora::tool {
namespace {

std::string written(ClusterFormat format, const std::vector<ClusterGeometry>& clusters,
                    std::uint64_t time_origin = 0) {
    const auto path = std::filesystem::path(testing::TempDir()) / "cluster_writer_test.out";
    {
        ClusterWriter writer(path, format);
        writer.write({clusters, time_origin, {}, {}});
    }
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    std::filesystem::remove(path);
    return text.str();
}

const ClusterGeometry kCluster(1.5F, 2.0F, 30.0F, 40.0F, 1'615'211'683'000'000U);

TEST(ClusterWriter, WritesAHeaderAndOneCsvRowPerCluster) {
    EXPECT_EQ(written(ClusterFormat::Csv, {kCluster, kCluster}),
              "timestamp_us,x,y,width,height,start_time_us,duration_us\n"
              "1615211683000000,1.5,2,30,40,-1,0\n"
              "1615211683000000,1.5,2,30,40,-1,0\n");
}

TEST(ClusterWriter, WritesOneJsonObjectPerLine) {
    EXPECT_EQ(written(ClusterFormat::JsonLines, {kCluster}),
              "{\"timestamp_us\":1615211683000000,\"x\":1.5,\"y\":2.0,\"width\":30.0,"
              "\"height\":40.0,\"start_time_us\":-1,\"duration_us\":0}\n");
}

TEST(ClusterWriter, CountsStartTimesFromTheOrigin) {
    const ClusterGeometry timed(cv::Rect_<float>(1.0F, 2.0F, 3.0F, 4.0F), 5, 6, 7);
    EXPECT_EQ(written(ClusterFormat::Csv, {timed}, 1'615'211'683'000'000),
              "timestamp_us,x,y,width,height,start_time_us,duration_us\n"
              "7,1,2,3,4,1615211683000005,6\n");
}

TEST(ClusterWriter, WithoutClustersWritesTheCsvHeaderOnly) {
    EXPECT_EQ(written(ClusterFormat::Csv, {}),
              "timestamp_us,x,y,width,height,start_time_us,duration_us\n");
    EXPECT_EQ(written(ClusterFormat::JsonLines, {}), "");
}

TEST(ClusterWriter, ReportsAFileThatCannotBeWritten) {
    EXPECT_THROW(ClusterWriter("/nowhere/clusters.csv", ClusterFormat::Csv), std::runtime_error);
    EXPECT_THROW(ClusterWriter("/dev/full", ClusterFormat::Csv), std::runtime_error);
}

}  // namespace
}  // namespace kelvora::tool
