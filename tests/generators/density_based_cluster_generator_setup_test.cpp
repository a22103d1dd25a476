// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <climits>
#include <cmath>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "kelvora/density_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/density_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kUndefined = std::numeric_limits<float>::quiet_NaN();

const std::string kSensorMessage =
    "DensityBasedClusterGenerator: sensor_width and sensor_height should be larger than 0";
const std::string kScalesMessage =
    "DensityBasedClusterGenerator: scale_width, scale_height, and scale_time should be larger than "
    "0";
const std::string kCapacityMessage =
    "DensityBasedClusterGenerator: max_capacity should be larger than 0";
const std::string kTimeLengthMessage =
    "DensityBasedClusterGenerator: max_time_length should be larger than 0";
const std::string kEpsMessage = "DensityBasedClusterGenerator: eps should be larger than 0";
const std::string kMinPtsMessage = "DensityBasedClusterGenerator: min_pts should be larger than 0";

template <class Kind>
class DensityGeneratorSetup : public ::testing::Test {
public:
    using Generator = DensityBasedClusterGenerator<Kind::kDim, typename Kind::T>;

    static std::string messageFor(const DensitySettings& settings) {
        try {
            const Generator generator = settings.build<Kind>();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "nothing was thrown";
    }
};
TYPED_TEST_SUITE(DensityGeneratorSetup, PointKinds, PointKindNames);

TYPED_TEST(DensityGeneratorSetup, MakesGeneratorsThatStayInPlace) {
    using Tested = typename TestFixture::Generator;
    EXPECT_FALSE(std::is_copy_constructible_v<Tested>);
    EXPECT_FALSE(std::is_copy_assignable_v<Tested>);
    EXPECT_FALSE(std::is_move_constructible_v<Tested>);
    EXPECT_FALSE(std::is_move_assignable_v<Tested>);
    EXPECT_TRUE(std::has_virtual_destructor_v<Tested>);
    EXPECT_EQ(sizeof(Tested), 2 * sizeof(void*));
}

TYPED_TEST(DensityGeneratorSetup, RefusesToSeparatePolarities) {
    EXPECT_EQ(this->messageFor(DensitySettings().filter(POLARITY_SEPARATE)),
              "DensityBasedClusterGenerator does not support POLARITY_SEPARATE event filter type");
}

TYPED_TEST(DensityGeneratorSetup, RefusesUnknownFilters) {
    for (const unsigned filter : {4U, 1000U, 0xFFFFFFFFU}) {
        try {
            DensitySettings().filter(static_cast<EventFilterType>(filter)).build<TypeParam>();
            FAIL() << "nothing was thrown";
        } catch (const std::out_of_range& error) {
            EXPECT_EQ(error.what(), std::string("invalid unordered_map<K, T> key"));
        }
    }
}

TYPED_TEST(DensityGeneratorSetup, RefusesSensorsWithoutPixels) {
    EXPECT_EQ(this->messageFor(DensitySettings().sensor(0, 10)), kSensorMessage);
    EXPECT_EQ(this->messageFor(DensitySettings().sensor(10, 0)), kSensorMessage);
    EXPECT_EQ(this->messageFor(DensitySettings().sensor(INT_MIN, -1)), kSensorMessage);
}

TYPED_TEST(DensityGeneratorSetup, RefusesScalesThatAreNotPositiveEvenIfUnused) {
    for (const float scale : {0.0F, -0.0F, -1.0F, -kInfinity}) {
        EXPECT_EQ(this->messageFor(DensitySettings().scales(scale, 1, 1)), kScalesMessage);
        EXPECT_EQ(this->messageFor(DensitySettings().scales(1, scale, 1)), kScalesMessage);
        EXPECT_EQ(this->messageFor(DensitySettings().scales(1, 1, scale)), kScalesMessage);
    }
}

TYPED_TEST(DensityGeneratorSetup, AcceptsScalesThatAreNotFinite) {
    for (const float scale : {kInfinity, kUndefined}) {
        EXPECT_NO_THROW(DensitySettings().scales(scale, scale, scale).template build<TypeParam>());
    }
}

TYPED_TEST(DensityGeneratorSetup, RefusesToClusterNoPointsAtAll) {
    EXPECT_EQ(this->messageFor(DensitySettings().capacity(0)), kCapacityMessage);
    EXPECT_EQ(this->messageFor(DensitySettings().timeLength(0)), kTimeLengthMessage);
}

TYPED_TEST(DensityGeneratorSetup, RefusesARadiusThatIsNotPositive) {
    for (const double eps : {0.0, -0.0, -1.0, -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(this->messageFor(DensitySettings().density(eps, 1)), kEpsMessage);
    }
    EXPECT_NO_THROW(DensitySettings().density(std::nan(""), 1).template build<TypeParam>());
}

TYPED_TEST(DensityGeneratorSetup, RefusesANumberOfPointsBelowOne) {
    for (const int min_pts : {0, -1, INT_MIN}) {
        EXPECT_EQ(this->messageFor(DensitySettings().density(1, min_pts)), kMinPtsMessage);
    }
}

TYPED_TEST(DensityGeneratorSetup, AcceptsAnyNumberOfJobs) {
    for (const int jobs : {INT_MIN, -256, -1, 0, 256, INT_MAX}) {
        EXPECT_NO_THROW(DensitySettings().jobs(jobs).template build<TypeParam>());
    }
}

TYPED_TEST(DensityGeneratorSetup, ReportsTheFirstOfSeveralWrongArguments) {
    auto settings = DensitySettings()
                        .filter(POLARITY_SEPARATE)
                        .sensor(0, 0)
                        .scales(0, 0, 0)
                        .capacity(0)
                        .timeLength(0)
                        .density(0, 0);
    EXPECT_THAT(this->messageFor(settings), StartsWith("DensityBasedClusterGenerator does not"));
    settings.filter(static_cast<EventFilterType>(4));
    EXPECT_THROW(settings.build<TypeParam>(), std::out_of_range);
    settings.filter(POSITIVE_FREE);
    EXPECT_EQ(this->messageFor(settings), kSensorMessage);
    settings.sensor(1, 1);
    EXPECT_EQ(this->messageFor(settings), kScalesMessage);
    settings.scales(1, 1, 1);
    EXPECT_EQ(this->messageFor(settings), kCapacityMessage);
    settings.capacity(DensitySettings::kUnbounded - 1);
    EXPECT_EQ(this->messageFor(settings), kTimeLengthMessage);
    settings.timeLength(1);
    EXPECT_EQ(this->messageFor(settings), kEpsMessage);
    settings.density(1, 0);
    EXPECT_EQ(this->messageFor(settings), kMinPtsMessage);
    settings.density(1, 1);
    EXPECT_THAT(this->messageFor(settings), StartsWith("DensityBasedClusterGenerator: Failed to"));
    settings.capacity(1);
    EXPECT_EQ(this->messageFor(settings), "nothing was thrown");
}

TYPED_TEST(DensityGeneratorSetup, RefusesMorePointsThanAVectorCanContain) {
    const std::string message =
        "DensityBasedClusterGenerator: Failed to reserve memory for points: vector::reserve";
    constexpr unsigned long long kLargestSum = 0xAAAAAAAAAAAAAAA8;
    for (const unsigned long long capacity :
         {DensitySettings::kUnbounded - 1, kLargestSum + 1, kLargestSum, 1ULL << 62}) {
        EXPECT_EQ(this->messageFor(DensitySettings().capacity(capacity)), message) << capacity;
    }
}

TYPED_TEST(DensityGeneratorSetup, HasAConstructorWithScalesAndWithoutBounds) {
    typename TestFixture::Generator generator(100, 80, 2, 0.5, 0.25, POLARITY_FREE, 2.5, 2, 1);
    EXPECT_THAT(boxesOf(clusterPixels(generator, squareAt(7, 3))), ElementsAre(Box{7, 3, 1, 1}));
    EXPECT_TRUE(generator.setMaxTimeLength(100));
    EXPECT_FALSE(generator.setMaxTimeLength(99));
}

TYPED_TEST(DensityGeneratorSetup, HasAConstructorWithoutScalesAndBounds) {
    typename TestFixture::Generator generator(100, 80, POSITIVE_FREE, 1.5, 4, 1);
    feedPixels(generator, squareAt(7, 3));
    EXPECT_THAT(generateFrom(generator), ElementsAre());
    for (Pixel pixel : squareAt(7, 3)) {
        pixel.polarity = 0;
        feedPixels(generator, {pixel});
    }
    EXPECT_THAT(boxesOf(generateFrom(generator)), ElementsAre(Box{7, 3, 1, 1}));
}

TYPED_TEST(DensityGeneratorSetup, AcceptsCapacitiesAboveZero) {
    auto generator = DensitySettings().build<TypeParam>();
    EXPECT_FALSE(generator.setMaxCapacity(0));
    EXPECT_TRUE(generator.setMaxCapacity(1));
    EXPECT_TRUE(generator.setMaxCapacity(DensitySettings::kUnbounded));
}

TYPED_TEST(DensityGeneratorSetup, AcceptsTimeLengthsOfAtLeastAMicrosecondPerBin) {
    auto generator = DensitySettings().timeLength(100'000).build<TypeParam>();
    EXPECT_FALSE(generator.setMaxTimeLength(0));
    EXPECT_FALSE(generator.setMaxTimeLength(99));
    EXPECT_TRUE(generator.setMaxTimeLength(100));
    auto short_window = DensitySettings().timeLength(40).build<TypeParam>();
    EXPECT_FALSE(short_window.setMaxTimeLength(39));
    EXPECT_TRUE(short_window.setMaxTimeLength(40));
}

}  // namespace
}  // namespace kelvora::test
