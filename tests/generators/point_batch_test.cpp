// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"
#include "support/density_settings.hpp"
#include "support/feeding.hpp"

namespace kelvora::test {
namespace {

/// Settings that put every event into a cluster, so that all points can be compared.
struct Density : DensitySettings {
    Density() { density(3, 1); }
};
struct Centroid : CentroidSettings {};

template <class GeneratorSettings, class PointsKind>
struct Tested {
    using Settings = GeneratorSettings;
    using Kind = PointsKind;
};

using TestedTypes =
    ::testing::Types<Tested<Density, PointKind<2, float>>, Tested<Density, PointKind<2, double>>,
                     Tested<Density, PointKind<3, float>>, Tested<Density, PointKind<3, double>>,
                     Tested<Centroid, PointKind<2, float>>, Tested<Centroid, PointKind<2, double>>,
                     Tested<Centroid, PointKind<3, float>>, Tested<Centroid, PointKind<3, double>>>;

struct TestedNames {
    template <class Type>
    static std::string GetName(int) {
        return (std::is_same_v<typename Type::Settings, Density> ? "Density" : "Centroid") +
               PointKindNames::GetName<typename Type::Kind>(0);
    }
};

template <class Type>
class BatchesOfPointGenerators : public ::testing::Test {
protected:
    using Kind = typename Type::Kind;

    template <class Generator>
    static std::vector<std::vector<std::array<typename Kind::T, Kind::kDim>>> coordinatesOf(
        Generator& generator) {
        std::vector<typename Kind::Points> points;
        generator.getClusterPoints(points, false);
        std::vector<std::vector<std::array<typename Kind::T, Kind::kDim>>> coordinates;
        for (const auto& cluster : points) {
            coordinates.emplace_back();
            for (const auto& point : cluster) {
                coordinates.back().push_back(point.coordinates);
            }
        }
        return coordinates;
    }

    template <class Event>
    static void compare(const typename Type::Settings& settings, Random& random) {
        auto one_by_one = settings.template build<Kind>();
        auto in_batches = settings.template build<Kind>();
        unsigned long long time = 1000;
        for (int call = 0; call < 4; ++call) {
            const auto events = randomEventsOf<Event>(random, time);
            feedOneByOne(one_by_one, events);
            feedInBatches(in_batches, events, random);
            const auto expected = boxesOf(generateFrom(one_by_one));
            ASSERT_EQ(boxesOf(generateFrom(in_batches)), expected);
            ASSERT_EQ(coordinatesOf(in_batches), coordinatesOf(one_by_one));
            EXPECT_FALSE(expected.empty());
        }
    }

    template <class Event>
    static void compareWithAllFilters() {
        Random random(3);
        for (const EventFilterType filter : {POLARITY_FREE, POSITIVE_FREE, NEGATIVE_FREE}) {
            for (const unsigned long long capacity : {1ULL, 40ULL, 5000ULL, ~0ULL}) {
                typename Type::Settings settings;
                settings.filter(filter).capacity(capacity).scales(0.5F, 3, 0.1F);
                compare<Event>(settings, random);
                settings.timeLength(2000);
                compare<Event>(settings, random);
            }
        }
    }

private:
    /// With rare gaps longer than a bin of the counter, and even rarer times that go back.
    template <class Event>
    static std::vector<Event> randomEventsOf(Random& random, unsigned long long& time) {
        std::vector<Event> events;
        for (const Event2D& event :
             randomEvents(random, 100, 80, static_cast<std::size_t>(randomInt(random, 1, 900)))) {
            const bool is_late = randomInt(random, 0, 99) == 0;
            time += static_cast<unsigned long long>(randomInt(random, 0, is_late ? 400 : 5));
            time -= randomInt(random, 0, 499) == 0 ? 300 : 0;
            events.push_back(makeEvent<Event>(event.x, event.y, event.polarity));
            events.back().timestamp = time;
        }
        return events;
    }
};
TYPED_TEST_SUITE(BatchesOfPointGenerators, TestedTypes, TestedNames);

TYPED_TEST(BatchesOfPointGenerators, AreLikeOneEventAfterTheOther) {
    TestFixture::template compareWithAllFilters<Event2D>();
}

TYPED_TEST(BatchesOfPointGenerators, AreLikeOneEventAfterTheOtherWithFrequencies) {
    TestFixture::template compareWithAllFilters<Event2DFrequency>();
}

TYPED_TEST(BatchesOfPointGenerators, AreLikeOneEventAfterTheOtherWithPeriods) {
    TestFixture::template compareWithAllFilters<Event2DPeriod<typename TypeParam::Kind::T>>();
}

TYPED_TEST(BatchesOfPointGenerators, WithoutEventsDoNothing) {
    auto generator = typename TypeParam::Settings().template build<typename TypeParam::Kind>();
    const auto event = positiveEvent(3, 3);
    generator.processEvents(&event, 0);
    generator.processEvents(static_cast<const Event2D*>(nullptr), 0);
    generator.processEvents(static_cast<const Event2D*>(nullptr), 3);
    EXPECT_TRUE(generateFrom(generator).empty());
}

}  // namespace
}  // namespace kelvora::test
