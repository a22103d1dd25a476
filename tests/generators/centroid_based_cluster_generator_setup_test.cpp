// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <climits>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kUndefined = std::numeric_limits<float>::quiet_NaN();

const std::string kNumberMessage = "CentroidClustering: k must be greater than 0";
const std::string kIterationsMessage = "CentroidClustering: max_iter must be greater than 0";
const std::string kToleranceMessage = "CentroidClustering: tol must be greater than 0";
const std::string kSensorMessage =
    "CentroidBasedClusterGenerator: sensor_width and sensor_height should be larger than 0";
const std::string kScalesMessage =
    "CentroidBasedClusterGenerator: scale_width, scale_height, and scale_time should be larger "
    "than 0";
const std::string kCapacityMessage =
    "CentroidBasedClusterGenerator: max_capacity should be larger than 0";
const std::string kTimeLengthMessage = "SlidingEventCounter: window_length must be larger than 0";

template <class Kind>
class CentroidGeneratorSetup : public ::testing::Test {
public:
    using Generator = CentroidBasedClusterGenerator<Kind::kDim, typename Kind::T>;

    template <class Exception = std::runtime_error>
    static std::string messageFor(const CentroidSettings& settings) {
        try {
            const Generator generator = settings.build<Kind>();
        } catch (const Exception& error) {
            return error.what();
        }
        return "nothing was thrown";
    }
};
TYPED_TEST_SUITE(CentroidGeneratorSetup, PointKinds, PointKindNames);

TYPED_TEST(CentroidGeneratorSetup, MakesGeneratorsThatStayInPlace) {
    using Tested = typename TestFixture::Generator;
    EXPECT_FALSE(std::is_copy_constructible_v<Tested>);
    EXPECT_FALSE(std::is_copy_assignable_v<Tested>);
    EXPECT_FALSE(std::is_move_constructible_v<Tested>);
    EXPECT_FALSE(std::is_move_assignable_v<Tested>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Tested>);
    EXPECT_EQ(sizeof(Tested), 2 * sizeof(void*));
}

TYPED_TEST(CentroidGeneratorSetup, RefusesTheSameArgumentsAsTheClusteringWithTheSameMessages) {
    EXPECT_EQ(this->messageFor(CentroidSettings().clusters(0)), kNumberMessage);
    EXPECT_EQ(this->messageFor(CentroidSettings().iterations(0)), kIterationsMessage);
    for (const double tol : {0.0, -0.0, -1.0, -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(this->messageFor(CentroidSettings().iterations(1, tol)), kToleranceMessage);
    }
}

TYPED_TEST(CentroidGeneratorSetup, AcceptsAToleranceThatIsNotFinite) {
    for (const float tol : {kInfinity, kUndefined}) {
        EXPECT_NO_THROW(CentroidSettings().iterations(1, tol).template build<TypeParam>());
    }
}

TYPED_TEST(CentroidGeneratorSetup, RefusesToSeparatePolarities) {
    EXPECT_EQ(this->messageFor(CentroidSettings().filter(POLARITY_SEPARATE)),
              "CentroidBasedClusterGenerator does not support POLARITY_SEPARATE event filter type");
}

TYPED_TEST(CentroidGeneratorSetup, RefusesUnknownFilters) {
    for (const unsigned filter : {4U, 1000U, 0xFFFFFFFFU}) {
        const auto settings = CentroidSettings().filter(static_cast<EventFilterType>(filter));
        EXPECT_EQ(this->template messageFor<std::out_of_range>(settings),
                  "invalid unordered_map<K, T> key");
    }
}

TYPED_TEST(CentroidGeneratorSetup, RefusesSensorsWithoutPixels) {
    EXPECT_EQ(this->messageFor(CentroidSettings().sensor(0, 10)), kSensorMessage);
    EXPECT_EQ(this->messageFor(CentroidSettings().sensor(10, 0)), kSensorMessage);
    EXPECT_EQ(this->messageFor(CentroidSettings().sensor(INT_MIN, -1)), kSensorMessage);
}

TYPED_TEST(CentroidGeneratorSetup, RefusesScalesThatAreNotPositiveEvenIfUnused) {
    for (const float scale : {0.0F, -0.0F, -1.0F, -kInfinity}) {
        EXPECT_EQ(this->messageFor(CentroidSettings().scales(scale, 1, 1)), kScalesMessage);
        EXPECT_EQ(this->messageFor(CentroidSettings().scales(1, scale, 1)), kScalesMessage);
        EXPECT_EQ(this->messageFor(CentroidSettings().scales(1, 1, scale)), kScalesMessage);
    }
}

TYPED_TEST(CentroidGeneratorSetup, AcceptsScalesThatAreNotFinite) {
    for (const float scale : {kInfinity, kUndefined}) {
        EXPECT_NO_THROW(CentroidSettings().scales(scale, scale, scale).template build<TypeParam>());
    }
}

TYPED_TEST(CentroidGeneratorSetup, RefusesToClusterNoPointsAtAll) {
    EXPECT_EQ(this->messageFor(CentroidSettings().capacity(0)), kCapacityMessage);
    EXPECT_EQ(this->template messageFor<std::invalid_argument>(CentroidSettings().timeLength(0)),
              kTimeLengthMessage);
}

TYPED_TEST(CentroidGeneratorSetup, ReportsTheFirstOfSeveralWrongArguments) {
    auto settings = CentroidSettings()
                        .filter(POLARITY_SEPARATE)
                        .sensor(0, 0)
                        .scales(0, 0, 0)
                        .capacity(0)
                        .timeLength(0)
                        .clusters(0)
                        .iterations(0, 0);
    EXPECT_EQ(this->messageFor(settings), kNumberMessage);
    settings.clusters(1);
    EXPECT_EQ(this->messageFor(settings), kIterationsMessage);
    settings.iterations(1, 0);
    EXPECT_EQ(this->messageFor(settings), kToleranceMessage);
    settings.iterations(1, 1);
    EXPECT_THAT(this->messageFor(settings), StartsWith("CentroidBasedClusterGenerator does not"));
    settings.filter(static_cast<EventFilterType>(4));
    EXPECT_THROW(settings.build<TypeParam>(), std::out_of_range);
    settings.filter(POSITIVE_FREE);
    EXPECT_EQ(this->messageFor(settings), kSensorMessage);
    settings.sensor(1, 1);
    EXPECT_EQ(this->messageFor(settings), kScalesMessage);
    settings.scales(1, 1, 1);
    EXPECT_EQ(this->messageFor(settings), kCapacityMessage);
    settings.capacity(CentroidSettings::kUnbounded - 1);
    EXPECT_THAT(this->messageFor(settings), StartsWith("CentroidBasedClusterGenerator: Failed to"));
    settings.capacity(1);
    EXPECT_EQ(this->template messageFor<std::invalid_argument>(settings), kTimeLengthMessage);
    settings.timeLength(1);
    EXPECT_EQ(this->template messageFor<std::exception>(settings), "nothing was thrown");
}

TYPED_TEST(CentroidGeneratorSetup, RefusesMorePointsThanAVectorCanContain) {
    const std::string message =
        "CentroidBasedClusterGenerator: Failed to reserve memory for points: vector::reserve";
    constexpr unsigned long long kLargestSum = 0xAAAAAAAAAAAAAAA8;
    for (const unsigned long long capacity :
         {CentroidSettings::kUnbounded - 1, kLargestSum + 1, kLargestSum, 1ULL << 62}) {
        EXPECT_EQ(this->messageFor(CentroidSettings().capacity(capacity)), message) << capacity;
    }
}

TYPED_TEST(CentroidGeneratorSetup, HasAConstructorWithScalesAndWithoutBounds) {
    typename TestFixture::Generator generator(100, 80, 2, 0.5, 0.25, POSITIVE_FREE, 1, 10, 1e-6);
    feedPixels(generator, {{50, 50}});
    for (int i = 0; i < 3000; ++i) {
        feedPixels(generator,
                   {{20 + i % 2, 30 + i % 2, 4'000'000ULL * static_cast<unsigned>(i), 0}});
    }
    EXPECT_THAT(boxesOf(generateFrom(generator)), ElementsAre(Box{20, 30, 1, 1}));
    const auto points = pointsOf<TypeParam>(generator, false);
    EXPECT_THAT(points, ElementsAre(SizeIs(3000)));
    EXPECT_EQ(points[0][1].coordinates, at<TypeParam>(42, 15.5, 1e6).coordinates);
}

TYPED_TEST(CentroidGeneratorSetup, HasAConstructorWithoutScalesAndBounds) {
    typename TestFixture::Generator generator(100, 80, NEGATIVE_FREE, 2, 10, 1e-6);
    feedPixels(generator, {{7, 3}, {8, 4}, {9, 9, 1000, 0}, {60, 50}, {61, 52, 1ULL << 50}});
    EXPECT_THAT(generateFrom(generator), SizeIs(2));
    feedPixels(generator, {{7, 3}});
    EXPECT_THAT(generateFrom(generator), IsEmpty());
    feedPixels(generator, {{7, 3, 1ULL << 51}, {60, 50, 1ULL << 51}});
    EXPECT_THAT(generateFrom(generator), SizeIs(2));
    const auto points = pointsOf<TypeParam>(generator, false);
    ASSERT_THAT(points, ElementsAre(SizeIs(1), SizeIs(1)));
    EXPECT_EQ(points[0][0].coordinates[0] + points[1][0].coordinates[0], 67);
    EXPECT_EQ(points[0][0].coordinates[1] + points[1][0].coordinates[1], 53);
}

TYPED_TEST(CentroidGeneratorSetup, AcceptsAnyCapacityEvenZero) {
    auto generator = CentroidSettings().build<TypeParam>();
    for (const unsigned long long capacity : {0ULL, 1ULL, CentroidSettings::kUnbounded}) {
        EXPECT_TRUE(generator.setMaxCapacity(capacity));
    }
}

TYPED_TEST(CentroidGeneratorSetup, AcceptsAnyNumberOfClustersExceptZero) {
    auto generator = CentroidSettings().build<TypeParam>();
    EXPECT_FALSE(generator.setClusterNumber(0));
    EXPECT_TRUE(generator.setClusterNumber(1));
    EXPECT_TRUE(generator.setClusterNumber(CentroidSettings::kUnbounded));
}

TYPED_TEST(CentroidGeneratorSetup, AcceptsTimeLengthsOfAtLeastAMicrosecondPerBin) {
    for (const unsigned long long window : {100ULL, 100'000ULL, CentroidSettings::kUnbounded}) {
        auto generator = CentroidSettings().timeLength(window).build<TypeParam>();
        EXPECT_FALSE(generator.setMaxTimeLength(0));
        EXPECT_FALSE(generator.setMaxTimeLength(50));
        EXPECT_FALSE(generator.setMaxTimeLength(99));
        EXPECT_TRUE(generator.setMaxTimeLength(100));
        EXPECT_TRUE(generator.setMaxTimeLength(1000));
        EXPECT_TRUE(generator.setMaxTimeLength(CentroidSettings::kUnbounded));
    }
    auto short_window = CentroidSettings().timeLength(40).build<TypeParam>();
    EXPECT_FALSE(short_window.setMaxTimeLength(0));
    EXPECT_FALSE(short_window.setMaxTimeLength(39));
    EXPECT_TRUE(short_window.setMaxTimeLength(40));
}

}  // namespace
}  // namespace kelvora::test
