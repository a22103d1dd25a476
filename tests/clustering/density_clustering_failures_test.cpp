// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

#include "support/density_models.hpp"
#include "support/density_settings.hpp"
#include "support/points.hpp"
#include "support/thread_failures.hpp"

namespace kelvora::test {
namespace {

using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Kind = PointKind<2, float>;

class DensityClusteringThatFails : public ::testing::Test {
protected:
    /// Clusters a set of points, and compares the result with the model.
    void expectItIsRight(int n_jobs) {
        run(n_jobs);
        ASSERT_GT(expected.clusters.size(), 5U);
        EXPECT_EQ(inOrderOfFirstMembers(found), expected);
    }

    /// A point so far away that a grid would have too many cells. A tree is used instead, which
    /// needs memory in each thread.
    void addAFarPoint() { points.push_back(at<Kind>(1e12)); }

    void run(int n_jobs) {
        clustering.generateClustersMultiThread(points, found.clusters, found.boxes,
                                               static_cast<unsigned char>(n_jobs));
    }

    static Kind::Points somePoints() {
        Random random(1);
        return randomGridPoints<Kind>(random, 1000, 0, 40, 1);
    }

    Kind::Points points = somePoints();
    const Clustering<float> expected = modelOfManyJobs<Kind>(points, 1.5, 3);
    DensityClustering<2, float> clustering{1.5, 3};
    Clustering<float> found;
};

TEST_F(DensityClusteringThatFails, ToStartAThreadThrowsWhenTheOthersHaveEnded) {
    for (const int allowed : {0, 1, 2, 15}) {
        {
            const ThreadStartWatch watch(allowed);
            try {
                run(16);
                FAIL() << "nothing was thrown";
            } catch (const std::system_error& error) {
                EXPECT_EQ(error.code(), std::errc::resource_unavailable_try_again);
            }
            EXPECT_EQ(watch.started(), allowed);
            EXPECT_TRUE(watch.allEnded());
            EXPECT_THAT(found.clusters, IsEmpty());
        }
        expectItIsRight(16);
    }
}

TEST_F(DensityClusteringThatFails, ToAllocateInAThreadThrowsInTheCallingOne) {
    addAFarPoint();
    for (const int allowed : {0, 1, 3, 6}) {
        {
            const ThreadStartWatch watch;
            const FailingThreadAllocations failing(allowed);
            EXPECT_THROW(run(4), std::bad_alloc) << allowed;
            EXPECT_TRUE(watch.allEnded());
            EXPECT_THAT(found.clusters, IsEmpty());
        }
        expectItIsRight(4);
    }
}

TEST_F(DensityClusteringThatFails, NeedsNoMemoryInThreadsWithoutFarPoints) {
    const FailingThreadAllocations failing(0);
    expectItIsRight(4);
}

TEST_F(DensityClusteringThatFails, LeavesOtherAllocationsAlone) {
    const FailingThreadAllocations failing(0);
    EXPECT_NO_THROW(run(1));
}

TEST_F(DensityClusteringThatFails, NeedsNoThreadForOneJobAndNotMoreThanJobs) {
    for (const int n_jobs : {1, 2, 3, 16, 255}) {
        const ThreadStartWatch watch;
        run(n_jobs);
        EXPECT_EQ(watch.started(), n_jobs == 1 ? 0 : n_jobs);
        EXPECT_TRUE(watch.allEnded());
    }
}

int threadsFor(int n_jobs, int events) {
    auto generator = DensitySettings().density(1.5, 2).jobs(n_jobs).build<Kind>();
    for (int i = 0; i < events; ++i) {
        feedPixels(generator, {{i % 100, i / 100}});
    }
    const ThreadStartWatch watch;
    generateFrom(generator);
    return watch.started();
}

TEST(ThreadsOfTheDensityGenerator, AreAsManyAsTheLow8BitsOfItsJobs) {
    EXPECT_EQ(threadsFor(300, 100), 44);
    EXPECT_EQ(threadsFor(257, 100), 0);
    EXPECT_EQ(threadsFor(5, 100), 5);
    EXPECT_EQ(threadsFor(-2, 100), 254);
}

TEST(ThreadsOfTheDensityGenerator, AreOnePerHardwareThreadForMinusOneJobs) {
    const int hardware = static_cast<int>(std::thread::hardware_concurrency());
    EXPECT_EQ(threadsFor(-1, 100), hardware == 1 ? 0 : hardware);
}

TEST(ThreadsOfTheDensityGenerator, AreOnePer2000PointsForNoJobs) {
    const int hardware = static_cast<int>(std::thread::hardware_concurrency());
    EXPECT_EQ(threadsFor(0, 1999), 0);
    EXPECT_EQ(threadsFor(0, 2000), std::min(hardware, 2) == 1 ? 0 : 2);
    EXPECT_EQ(threadsFor(0, 6000), std::min(hardware, 4) == 1 ? 0 : std::min(hardware, 4));
}

TEST(ThreadsOfTheDensityGenerator, LeaveNoPointsWhenTheyCannotBeStarted) {
    auto generator = DensitySettings().density(1.5, 2).jobs(4).build<Kind>();
    EXPECT_THAT(clusterPixels(generator, squareAt(5, 5)), SizeIs(1));
    feedPixels(generator, squareAt(7, 7));
    {
        const ThreadStartWatch watch(2);
        EXPECT_THROW(generateFrom(generator), std::system_error);
    }
    std::vector<Kind::Points> points;
    generator.getClusterPoints(points, true);
    EXPECT_THAT(points, Each(IsEmpty()));
    std::vector<cv::Mat> matrices;
    generator.getClusterPoints(matrices, true);
    for (const cv::Mat& matrix : matrices) {
        EXPECT_EQ(matrix.total(), 0U);
    }
    cv::Mat matrix;
    generator.getClusterPoints(matrix, true);
    EXPECT_EQ(matrix.total(), 0U);
    EXPECT_THAT(clusterPixels(generator, squareAt(9, 9)), SizeIs(1));
}

}  // namespace
}  // namespace kelvora::test
