// SPDX-License-Identifier: MIT
// Generators without enough memory.
#include <gmock/gmock.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "support/allocation_checks.hpp"
#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"
#include "support/density_settings.hpp"
#include "support/feeding.hpp"
#include "support/grid_settings.hpp"
#include "support/labels.hpp"

namespace kelvora::test {
namespace {

using ::testing::AnyOf;
using ::testing::Each;
using ::testing::IsEmpty;
using Kind = PointKind<2, float>;

GridBasedClusterGenerator build(const GridSettings& settings) {
    return settings.build();
}

template <class PointSettings>
auto build(const PointSettings& settings) {
    return settings.template build<Kind>();
}

template <class Settings>
class GeneratorsWithoutMemory : public ::testing::Test {
public:
    using Generator = decltype(build(Settings()));

    static std::vector<Event2D> someEvents(unsigned seed) {
        Random random(seed);
        return randomEvents(random, 40, 40, 200);
    }

    /// A generator that has clustered some events and got new ones.
    std::unique_ptr<Generator> generatorWithEvents() const {
        std::unique_ptr<Generator> generator(new Generator(build(Settings())));
        feedOneByOne(*generator, someEvents(1));
        generateFrom(*generator);
        feedOneByOne(*generator, events);
        return generator;
    }

    /// Lets each allocation of `generateClusters` fail in turn.
    template <class Check>
    std::size_t failToGenerate(const Check& check) const {
        std::vector<ClusterGeometry> clusters;
        return failEachAllocation(
            [&] {
                clusters = {};
                return generatorWithEvents();
            },
            [&](std::unique_ptr<Generator>& generator) {
                generator->generateClusters(0, clusters);
            },
            [&](std::unique_ptr<Generator>& generator) { check(*generator); });
    }

    std::vector<Event2D> events = someEvents(2);
    std::vector<Event2D> next_events = someEvents(3);
};
using AllSettings = ::testing::Types<GridSettings, DensitySettings, CentroidSettings>;
TYPED_TEST_SUITE(GeneratorsWithoutMemory, AllSettings);

// Events of the call that failed are clustered by the next call, or not at all.
TYPED_TEST(GeneratorsWithoutMemory, ClusterTheNextEvents) {
    const auto after_success = this->generatorWithEvents();
    generateFrom(*after_success);
    feedOneByOne(*after_success, this->next_events);
    const auto without_old_ones = boxesOf(generateFrom(*after_success));
    const auto after_nothing = this->generatorWithEvents();
    feedOneByOne(*after_nothing, this->next_events);
    const auto with_old_ones = boxesOf(generateFrom(*after_nothing));
    const std::size_t failures = this->failToGenerate([&](auto& generator) {
        feedOneByOne(generator, this->next_events);
        EXPECT_THAT(boxesOf(generateFrom(generator)), AnyOf(without_old_ones, with_old_ones));
    });
    EXPECT_GT(failures, 2U);
}

template <class Settings>
class PointGeneratorsWithoutMemory : public GeneratorsWithoutMemory<Settings> {};
using SettingsOfPoints = ::testing::Types<DensitySettings, CentroidSettings>;
TYPED_TEST_SUITE(PointGeneratorsWithoutMemory, SettingsOfPoints);

TYPED_TEST(PointGeneratorsWithoutMemory, HaveAllPointsAndLabelsOfTheLastCallOrNone) {
    const auto after_success = this->generatorWithEvents();
    generateFrom(*after_success);
    const auto all_labels = labelsOf(*after_success);
    const std::vector<int> no_labels(all_labels.size(), -1);
    std::size_t without_any = 0;
    const std::size_t failures = this->failToGenerate([&](auto& generator) {
        const auto labels = labelsOf(generator);
        EXPECT_THAT(labels, AnyOf(all_labels, no_labels));
        if (labels == no_labels) {
            std::vector<typename Kind::Points> points;
            generator.getClusterPoints(points, true);
            EXPECT_THAT(points, Each(IsEmpty()));
            ++without_any;
        }
    });
    EXPECT_GE(without_any, 5U);
    EXPECT_GT(failures, without_any);
}

}  // namespace
}  // namespace kelvora::test
