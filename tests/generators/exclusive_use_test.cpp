// SPDX-License-Identifier: MIT
#include "exclusive_use.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <utility>
#include <vector>

#include "kelvora/density_clustering.hpp"
#include "support/centroid_settings.hpp"
#include "support/density_settings.hpp"
#include "support/grid_settings.hpp"
#include "support/pixels.hpp"
#include "support/points.hpp"

namespace {

/// Called by the next allocation, once.
std::function<void()> during_next_allocation;

}  // namespace

// Replaces the function of the whole program: a call that allocates can then be interrupted by
// another call on the same object, as a second thread would do at a bad moment.
void* operator new(std::size_t size) {
    if (during_next_allocation) {
        const auto call = std::move(during_next_allocation);
        during_next_allocation = nullptr;
        call();
    }
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): below operator new there is nothing else
    if (void* const memory = std::malloc(size > 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}
// Not inlined: where GCC inlines only these, it warns of memory from `new` that goes to `free`.
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): as above
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);  // NOLINT(cppcoreguidelines-no-malloc): as above
}

namespace kelvora::test {
namespace {

using Kind = PointKind<2, float>;

/// Clusters the events fed before; `call` comes in between.
template <class Generator>
void generateWith(Generator& generator, std::function<void()> call) {
    std::vector<ClusterGeometry> clusters;
    during_next_allocation = std::move(call);
    generator.generateClusters(0, clusters);
}

const Event2D kEvent(1, 1, 1, 1000);

TEST(ExclusiveUse, AllowsOneCallAfterTheOther) {
    ExclusiveUse use;
    { const ExclusiveUse::Scope first(use); }
    { const ExclusiveUse::Scope second(use); }
}

TEST(ExclusiveUse, AllowsOverlappingCallsOnDifferentObjects) {
    ExclusiveUse use;
    ExclusiveUse other;
    const ExclusiveUse::Scope first(use);
    const ExclusiveUse::Scope second(other);
}

TEST(ExclusiveUse, LetsResetOverlapWithFeedingADensityGenerator) {
    auto generator = DensitySettings().build<Kind>();
    bool was_called = false;
    during_next_allocation = [&] {
        generator.reset();
        was_called = true;
    };
    generator.processEvent(&kEvent);
    EXPECT_TRUE(was_called);
}

#ifndef NDEBUG
TEST(ExclusiveUseDeathTest, EndsTheProgramIfTwoCallsOverlap) {
    ExclusiveUse use;
    const ExclusiveUse::Scope first(use);
    EXPECT_DEATH({ const ExclusiveUse::Scope second(use); }, "calls overlap");
}

TEST(ExclusiveUseDeathTest, FindsAGridGeneratorThatIsUsedWhileItGenerates) {
    auto generator = GridSettings().build();
    generator.processEvent(&kEvent);
    EXPECT_DEATH(generateWith(generator, [&] { generator.processEvent(&kEvent); }),
                 "calls overlap");
    EXPECT_DEATH(generateWith(generator, [&] { generator.reset(); }), "calls overlap");
}

TEST(ExclusiveUseDeathTest, FindsADensityGeneratorThatIsFedWhileItGenerates) {
    auto generator = DensitySettings().build<Kind>();
    feedPixels(generator, squareAt(5, 5));
    EXPECT_DEATH(generateWith(generator, [&] { generator.processEvent(&kEvent); }),
                 "calls overlap");
    EXPECT_DEATH(generateWith(generator, [&] { generator.processEvents(&kEvent, 1); }),
                 "calls overlap");
}

TEST(ExclusiveUseDeathTest, FindsACentroidGeneratorThatIsFedWhileItGenerates) {
    auto generator = CentroidSettings().build<Kind>();
    feedPixels(generator, squareAt(5, 5));
    EXPECT_DEATH(generateWith(generator, [&] { generator.processEvent(&kEvent); }),
                 "calls overlap");
}

TEST(ExclusiveUseDeathTest, FindsADensityClusteringThatIsUsedWhileItClusters) {
    DensityClustering<2, float> clustering(1.5, 2);
    const auto points = line<Kind>({0, 1, 2});
    const auto cluster = [&] {
        std::vector<std::vector<std::size_t>> clusters;
        std::vector<std::vector<float>> boxes;
        clustering.generateClustersMultiThread(points, clusters, boxes, 1);
    };
    EXPECT_DEATH(
        {
            during_next_allocation = cluster;
            cluster();
        },
        "calls overlap");
}
#endif

}  // namespace
}  // namespace kelvora::test
