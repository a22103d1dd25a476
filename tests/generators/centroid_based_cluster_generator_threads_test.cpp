// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <atomic>
#include <cstddef>
#include <opencv2/core/mat.hpp>
#include <thread>
#include <vector>

#include "kelvora/centroid_based_cluster_generator.hpp"
#include "support/boxes.hpp"
#include "support/centroid_settings.hpp"

namespace kelvora::test {
namespace {

using ::testing::ElementsAre;
using ::testing::SizeIs;

constexpr int kRounds = 200;

template <class Kind>
class ThreadsAroundTheCentroidGenerator : public ::testing::Test {
public:
    using Generator = CentroidBasedClusterGenerator<Kind::kDim, typename Kind::T>;

    /// Calls all getters for a cluster of four points.
    static void expectTheSquareIsThere(Generator& generator) {
        ASSERT_THAT(pointsOf<Kind>(generator), ElementsAre(SizeIs(4)));
        std::vector<cv::Mat> matrices;
        generator.getClusterPoints(matrices, true);
        ASSERT_THAT(matrices, SizeIs(1));
        ASSERT_EQ(matrices[0].rows, 4);
        cv::Mat matrix;
        generator.getClusterPoints(matrix, true);
        ASSERT_EQ(matrix.rows, 4);
        ASSERT_THAT(centroidsOf<Kind>(generator), SizeIs(1));
        ASSERT_THAT(sizesOf(generator), ElementsAre(4));
    }
};
TYPED_TEST_SUITE(ThreadsAroundTheCentroidGenerator, PointKinds, PointKindNames);

TYPED_TEST(ThreadsAroundTheCentroidGenerator, MayReadResultsWhileOneFeeds) {
    auto generator = CentroidSettings().build<TypeParam>();
    clusterPixels(generator, squareAt(5, 5));
    std::vector<std::thread> others;
    for (int thread = 0; thread < 3; ++thread) {
        others.emplace_back([&generator] {
            for (int round = 0; round < kRounds; ++round) {
                TestFixture::expectTheSquareIsThere(generator);
            }
        });
    }
    for (int round = 0; round < 10 * kRounds; ++round) {
        feedPixels(generator, {{20, 30}});
    }
    for (std::thread& other : others) {
        other.join();
    }
    generateFrom(generator);
    EXPECT_THAT(sizesOf(generator), ElementsAre(10 * kRounds));
}

TYPED_TEST(ThreadsAroundTheCentroidGenerator, MaySetWhileOneFeeds) {
    auto generator = CentroidSettings().build<TypeParam>();
    std::atomic<int> accepted{0};
    std::vector<std::thread> others;
    for (int thread = 0; thread < 3; ++thread) {
        others.emplace_back([&] {
            for (int round = 1; round <= kRounds; ++round) {
                const auto value = static_cast<unsigned long long>(round);
                accepted += generator.setMaxCapacity(value) ? 1 : 0;
                accepted += generator.setClusterNumber(value) ? 1 : 0;
                accepted += generator.setMaxTimeLength(value + 99) ? 1 : 0;
            }
        });
    }
    for (int round = 0; round < 10 * kRounds; ++round) {
        feedPixels(generator, {{round % 100, 30}});
    }
    for (std::thread& other : others) {
        other.join();
    }
    EXPECT_EQ(accepted, 3 * 3 * kRounds);
    // The last settings give as many clusters as points.
    EXPECT_THAT(generateFrom(generator), SizeIs(kRounds));
}

TYPED_TEST(ThreadsAroundTheCentroidGenerator, MayResetAndReadResultsAtTheSameTimeWhileNoneFeeds) {
    auto generator = CentroidSettings().build<TypeParam>();
    clusterPixels(generator, squareAt(5, 5));
    feedPixels(generator, squareAt(50, 50));
    std::vector<std::thread> others;
    for (int thread = 0; thread < 3; ++thread) {
        others.emplace_back([&generator] {
            for (int round = 0; round < kRounds; ++round) {
                generator.reset();
                EXPECT_TRUE(generator.setMaxTimeLength(100));
                TestFixture::expectTheSquareIsThere(generator);
            }
        });
    }
    for (std::thread& other : others) {
        other.join();
    }
    EXPECT_THAT(generateFrom(generator), SizeIs(0));
}

TYPED_TEST(ThreadsAroundTheCentroidGenerator, MayHaveOneEach) {
    std::vector<int> found(4, 0);
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < found.size(); ++thread) {
        threads.emplace_back([&found, thread] {
            auto generator = CentroidSettings().clusters(2).build<TypeParam>();
            for (int round = 0; round < 50; ++round) {
                feedPixels(generator, squareAt(round, 1));
                const auto boxes = boxesOf(clusterPixels(generator, squareAt(round, 70)));
                const float x = static_cast<float>(round);
                const bool upper_first = !boxes.empty() && boxes[0].y == 1;
                const std::vector<Box> expected = {{x, upper_first ? 1.0F : 70.0F, 1, 1},
                                                   {x, upper_first ? 70.0F : 1.0F, 1, 1}};
                found[thread] += boxes == expected && sizesOf(generator)[1] == 4 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(found, ::testing::Each(50));
}

}  // namespace
}  // namespace kelvora::test
