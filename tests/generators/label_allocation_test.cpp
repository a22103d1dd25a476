// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <vector>

#include "support/allocations.hpp"
#include "support/centroid_settings.hpp"
#include "support/density_settings.hpp"
#include "support/feeding.hpp"
#include "support/labels.hpp"

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;
using Labels = std::vector<int>;

template <class Settings>
class AllocationsOfLabels : public ::testing::Test {
protected:
    static auto build(const Settings& settings) { return settings.template build<Kind>(); }
};
using BothSettings = ::testing::Types<DensitySettings, CentroidSettings>;
TYPED_TEST_SUITE(AllocationsOfLabels, BothSettings);

std::vector<Event2D> alternatingEvents(std::size_t count) {
    std::vector<Event2D> events;
    for (std::size_t i = 0; i < count; ++i) {
        events.push_back(eventOfPolarity(9, 9, static_cast<int>(i % 2)));
    }
    return events;
}

// The allocations of clustering fail one after the other.
TYPED_TEST(AllocationsOfLabels, ThatFailWhileClusteringLeaveNoLabels) {
    const auto events = alternatingEvents(200);
    std::size_t failures = 0;
    for (std::size_t allowed = 0; allowed < 3; ++allowed) {
        auto generator = this->build(TypeParam());
        feedOneByOne(generator, events);
        std::vector<ClusterGeometry> clusters;
        clusters.reserve(10);
        try {
            const AllocationWatch watch(allowed);
            generator.generateClusters(0, clusters);
        } catch (const std::bad_alloc&) {
            ++failures;
            EXPECT_EQ(labelsOf(generator), Labels(events.size(), -1));
        }
    }
    EXPECT_EQ(failures, 3U);
}

TYPED_TEST(AllocationsOfLabels, AreOneForTheLabelsThemselves) {
    auto generator = this->build(TypeParam());
    feedOneByOne(generator, alternatingEvents(1000));
    generateFrom(generator);
    Labels labels;
    const AllocationWatch watch;
    generator.getClusterLabels(labels);
    EXPECT_EQ(watch.allocations(), 1U);
    EXPECT_EQ(watch.largestRequest(), 1000 * sizeof(int));
}

}  // namespace
}  // namespace kelvora::test
