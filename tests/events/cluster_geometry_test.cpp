// SPDX-License-Identifier: MIT
#include "kelvora/cluster_geometry.hpp"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace kelvora {
namespace {

constexpr auto kLargestTime = std::numeric_limits<unsigned long long>::max();

auto fieldsOf(const ClusterGeometry& cluster) {
    return std::make_tuple(cluster.x, cluster.y, cluster.z, cluster.width, cluster.height,
                           cluster.depth, cluster.start_time, cluster.duration, cluster.timestamp);
}

ClusterGeometry distinctCluster() {
    return {1, 2, 3, 4, 5, 6, 7, 8, 9};
}

/// Bytes of a record in memory, including uninitialised fields.
class RecordInMemory {
public:
    static constexpr unsigned char kPattern = 0xA5;

    RecordInMemory() { bytes.fill(kPattern); }

    template <typename Field>
    bool isUntouched(std::size_t offset) const {
        std::array<unsigned char, sizeof(Field)> untouched = {};
        untouched.fill(kPattern);
        return std::memcmp(bytes.data() + offset, untouched.data(), untouched.size()) == 0;
    }

    template <typename Field>
    Field read(std::size_t offset) const {
        Field field = {};
        std::memcpy(&field, bytes.data() + offset, sizeof(Field));
        return field;
    }

    void* place() { return bytes.data(); }

private:
    alignas(ClusterGeometry) std::array<unsigned char, sizeof(ClusterGeometry)> bytes = {};
};

void expectOnlyTimesAreSet(const RecordInMemory& memory) {
    EXPECT_TRUE(memory.isUntouched<float>(offsetof(ClusterGeometry, x)));
    EXPECT_TRUE(memory.isUntouched<float>(offsetof(ClusterGeometry, y)));
    EXPECT_TRUE(memory.isUntouched<unsigned long long>(offsetof(ClusterGeometry, z)));
    EXPECT_TRUE(memory.isUntouched<float>(offsetof(ClusterGeometry, width)));
    EXPECT_TRUE(memory.isUntouched<float>(offsetof(ClusterGeometry, height)));
    EXPECT_TRUE(memory.isUntouched<unsigned long long>(offsetof(ClusterGeometry, depth)));
    EXPECT_EQ(memory.read<int>(offsetof(ClusterGeometry, start_time)), -1);
    EXPECT_EQ(memory.read<int>(offsetof(ClusterGeometry, duration)), 0);
    EXPECT_EQ(memory.read<unsigned long long>(offsetof(ClusterGeometry, timestamp)), 0U);
}

TEST(ClusterGeometry, IsAStandardLayoutValueThatCanBeCopiedAndMoved) {
    EXPECT_TRUE(std::is_standard_layout_v<ClusterGeometry>);
    EXPECT_TRUE(std::is_copy_constructible_v<ClusterGeometry>);
    EXPECT_TRUE(std::is_trivially_copy_constructible_v<ClusterGeometry>);
    EXPECT_TRUE(std::is_copy_assignable_v<ClusterGeometry>);
    EXPECT_TRUE(std::is_nothrow_move_constructible_v<ClusterGeometry>);
    EXPECT_TRUE(std::is_nothrow_move_assignable_v<ClusterGeometry>);
}

TEST(ClusterGeometry, KeepsTheOrderOfItsFields) {
    EXPECT_EQ(offsetof(ClusterGeometry, x), 0U);
    EXPECT_EQ(offsetof(ClusterGeometry, y), 4U);
    EXPECT_EQ(offsetof(ClusterGeometry, z), 8U);
    EXPECT_EQ(offsetof(ClusterGeometry, width), 16U);
    EXPECT_EQ(offsetof(ClusterGeometry, height), 20U);
    EXPECT_EQ(offsetof(ClusterGeometry, depth), 24U);
    EXPECT_EQ(offsetof(ClusterGeometry, start_time), 32U);
    EXPECT_EQ(offsetof(ClusterGeometry, duration), 36U);
    EXPECT_EQ(offsetof(ClusterGeometry, timestamp), 40U);
    EXPECT_EQ(sizeof(ClusterGeometry), 48U);
}

TEST(ClusterGeometry, LeavesTheBoxUninitialisedByDefault) {
    RecordInMemory memory;
    new (memory.place()) ClusterGeometry;
    expectOnlyTimesAreSet(memory);
}

TEST(ClusterGeometry, LeavesTheBoxUninitialisedWithEmptyParentheses) {
    RecordInMemory memory;
    new (memory.place()) ClusterGeometry();
    expectOnlyTimesAreSet(memory);
}

TEST(ClusterGeometry, LeavesTheBoxUninitialisedWithEmptyBraces) {
    RecordInMemory memory;
    new (memory.place()) ClusterGeometry{};
    expectOnlyTimesAreSet(memory);
}

TEST(ClusterGeometry, TakesTheBoxOfARectangleAndSetsNoExtentInTime) {
    const ClusterGeometry cluster(cv::Rect_<float>(1.5F, 2.5F, 3.5F, 4.5F), 7);
    EXPECT_EQ(fieldsOf(cluster), std::make_tuple(1.5F, 2.5F, 0, 3.5F, 4.5F, 0, -1, 0, 7));
}

TEST(ClusterGeometry, TakesTheBoxOfARectangleAndAnExtentInTime) {
    const ClusterGeometry cluster(cv::Rect_<float>(1, 2, 3, 4), 5, 6, 7);
    EXPECT_EQ(fieldsOf(cluster), std::make_tuple(1.0F, 2.0F, 0, 3.0F, 4.0F, 0, 5, 6, 7));
}

TEST(ClusterGeometry, KeepsTheLowHalfOfLongTimes) {
    const ClusterGeometry cluster(cv::Rect_<float>(1, 2, 3, 4), (1ULL << 32) + 5, 2, 9);
    EXPECT_EQ(cluster.start_time, 5);
    EXPECT_EQ(cluster.duration, 2);
    EXPECT_EQ(cluster.timestamp, 9U);
}

TEST(ClusterGeometry, TurnsTimesBeyondTheSignedRangeNegative) {
    const ClusterGeometry cluster(cv::Rect_<float>(), 0xFFFFFFFF, 0x1'80000000, kLargestTime);
    EXPECT_EQ(cluster.start_time, -1);
    EXPECT_EQ(cluster.duration, std::numeric_limits<int>::min());
    EXPECT_EQ(cluster.timestamp, kLargestTime);
}

TEST(ClusterGeometry, TakesABoxAndSetsNoExtentInTime) {
    const ClusterGeometry cluster(1, 2, 3, 4, kLargestTime);
    EXPECT_EQ(fieldsOf(cluster),
              std::make_tuple(1.0F, 2.0F, 0, 3.0F, 4.0F, 0, -1, 0, kLargestTime));
}

TEST(ClusterGeometry, TakesABoxAndAnExtentInTime) {
    const ClusterGeometry cluster(1, 2, 3, 4, -5, 6, 7);
    EXPECT_EQ(fieldsOf(cluster), std::make_tuple(1.0F, 2.0F, 0, 3.0F, 4.0F, 0, -5, 6, 7));
}

TEST(ClusterGeometry, TakesEveryFieldInOrder) {
    EXPECT_EQ(fieldsOf(distinctCluster()), std::make_tuple(1.0F, 2.0F, 3, 4.0F, 5.0F, 6, 7, 8, 9));
}

TEST(ClusterGeometry, ChecksNothingThatItIsGiven) {
    const float infinity = std::numeric_limits<float>::infinity();
    const ClusterGeometry cluster(-1, -infinity, -3, infinity, 0);
    EXPECT_EQ(cluster.x, -1);
    EXPECT_EQ(cluster.y, -infinity);
    EXPECT_EQ(cluster.width, -3);
    EXPECT_EQ(cluster.height, infinity);
}

TEST(ClusterGeometry, CopiesAndMovesEveryField) {
    ClusterGeometry source = distinctCluster();
    const ClusterGeometry copied = source;
    const ClusterGeometry moved = std::move(source);
    ClusterGeometry copy_assigned;
    copy_assigned = copied;
    ClusterGeometry move_assigned;
    move_assigned = distinctCluster();
    for (const ClusterGeometry& cluster : {copied, moved, copy_assigned, move_assigned}) {
        EXPECT_EQ(fieldsOf(cluster), fieldsOf(distinctCluster()));
    }
}

TEST(ClusterGeometry, CanBeErasedFromVectors) {
    std::vector<ClusterGeometry> clusters = {{0, 0, 1, 1, 1}, distinctCluster()};
    clusters.erase(clusters.begin());
    EXPECT_EQ(fieldsOf(clusters.at(0)), fieldsOf(distinctCluster()));
}

TEST(ClusterGeometry, GivesItsBoxAsAConstantRectangle) {
    const ClusterGeometry cluster(1, 2, 3, 4, 5);
    EXPECT_EQ(cluster.get2DBoundingBox(), cv::Rect_<float>(1, 2, 3, 4));
    EXPECT_TRUE((std::is_same_v<decltype(cluster.get2DBoundingBox()), const cv::Rect_<float>>));
}

TEST(ClusterGeometry, ComputesItsArea) {
    EXPECT_EQ(ClusterGeometry(1, 2, 3, 4.5F, 0).getArea(), 13.5F);
}

TEST(ClusterGeometry, ComputesWidthOverHeight) {
    EXPECT_EQ(ClusterGeometry(1, 2, 3, 4, 0).getAspectRatio(), 0.75F);
}

TEST(ClusterGeometry, HasAnInfiniteAspectRatioWithoutHeight) {
    EXPECT_EQ(ClusterGeometry(0, 0, 4, 0, 0).getAspectRatio(),
              std::numeric_limits<float>::infinity());
}

TEST(ClusterGeometry, HasAnUndefinedAspectRatioWithoutWidthAndHeight) {
    EXPECT_TRUE(std::isnan(ClusterGeometry(0, 0, 0, 0, 0).getAspectRatio()));
}

TEST(ClusterGeometry, ComputesItsCenter) {
    EXPECT_EQ(ClusterGeometry(10, 20, 5, 3, 0).getCenter(), cv::Point_<float>(12.5F, 21.5F));
}

TEST(ClusterGeometry, RoundsItsCenterToSinglePrecision) {
    // 2^24 + 0.5 lies between two floats, and 2^24 is the even one.
    EXPECT_EQ(ClusterGeometry(16777216, 0, 1, 0, 0).getCenter().x, 16777216.0F);
}

}  // namespace
}  // namespace kelvora
