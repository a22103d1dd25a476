// SPDX-License-Identifier: MIT
#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <vector>

#include "support/kmeans_outcome.hpp"
#include "support/points.hpp"
#include "support/rounds.hpp"

namespace kelvora::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kUndefined = std::numeric_limits<double>::quiet_NaN();

/// A number in [-1, 1].
double randomReal(Random& random) {
    return randomInt(random, -1'000'000, 1'000'000) * 1e-6;
}

/// Up to 40 points of some shape.
template <class Kind>
typename Kind::Points randomPoints(Random& random) {
    const auto count = static_cast<std::size_t>(randomInt(random, 0, 40));
    const int shape = randomInt(random, 0, 5);
    if (shape == 0) {  // many points coincide, or have equal distances to others
        // Means of points at multiples of 0.1 are not exact multiples.
        const double unit = randomInt(random, 0, 1) == 0 ? 0.5 : 0.1;
        return randomGridPoints<Kind>(random, count, -2, randomInt(random, 1, 7), unit);
    }
    typename Kind::Points points(count);
    for (auto& point : points) {
        const double x = randomReal(random);
        const double y = randomReal(random);
        const double z = randomReal(random);
        const double group = randomInt(random, 0, 3);
        if (shape == 1) {
            point = at<Kind>(100 * x, 100 * y, 100 * z);
        } else if (shape == 2) {  // on a line
            point = at<Kind>(x, 2 * x, -x);
        } else if (shape == 3) {  // in groups
            point = at<Kind>(10 * group + x, 7 * group + y, z);
        } else if (shape == 4) {  // too close for `float` to tell distances apart
            point = at<Kind>(group + 1e-9 * x, 1e-9 * y, 1e-9 * z);
        } else {  // squares or sums of squares that are not finite, or 0
            const double size = randomInt(random, 0, 1) == 0 ? 1e30 : 1e-50;
            point = at<Kind>(size * x, size * y, size * z);
        }
    }
    return points;
}

/// Constructor arguments of a clustering object.
struct Settings {
    explicit Settings(Random& random)
        : k(static_cast<std::size_t>(randomInt(random, 1, random() % 4 == 0 ? 30 : 8))),
          max_iter(static_cast<std::size_t>(randomInt(random, 1, 20))) {
        constexpr std::array<double, 7> kTols = {1e-9,  1e-300,    0.01,      1,
                                                 1e300, kInfinity, kUndefined};
        tol = kTols[random() % kTols.size()];
    }

    std::size_t k;
    std::size_t max_iter;
    double tol;
};

/// Statistics of the runs of a test, to detect trivial ones.
struct Variety {
    template <class Kind>
    void add(const KMeansModelRun<Kind>& run, const Settings& settings, std::size_t first) {
        const auto& counts = run.outcome.counts;
        with_empty_clusters += std::count(counts.begin(), counts.end(), 0U) > 0 ? 1 : 0;
        with_far_moves += run.model.hasMovedCentroidFar() ? 1 : 0;
        with_several_leaves += settings.k > 10 ? 1 : 0;
        stopped_early += run.iterations() < settings.max_iter ? 1 : 0;
        long_runs += run.iterations() > 4 ? 1 : 0;
        from_other_points += first > 0 ? 1 : 0;
    }
    int with_empty_clusters = 0;
    int with_far_moves = 0;
    int with_several_leaves = 0;
    int stopped_early = 0;
    int long_runs = 0;
    int from_other_points = 0;
    int too_few_points = 0;
};

/// The first centroid from which the model reaches the same result.
template <class Kind>
std::optional<std::size_t> firstCentroidOf(const KMeansOutcome<Kind>& found,
                                           const typename Kind::Points& points,
                                           const Settings& settings) {
    for (std::size_t first = 0; first < points.size(); ++first) {
        const KMeansModelRun<Kind> run(points, settings.k, settings.max_iter, settings.tol, first);
        if (run.outcome == found) {
            return first;
        }
    }
    return std::nullopt;
}

/// Compares each point with each centroid.
template <class Kind>
void expectLabelsAreOfNearestCentroids(const KMeansModelRun<Kind>& run,
                                       const typename Kind::Points& points) {
    const auto squaredDistance = [](const auto& a, const auto& b) {
        typename Kind::T sum = 0;
        for (std::size_t axis = 0; axis < Kind::kDim; ++axis) {
            const auto difference = a.coordinates[axis] - b.coordinates[axis];
            sum += difference * difference;
        }
        return sum;
    };
    const auto& centroids = run.model.getCentroidsOfLabels();
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto own = squaredDistance(points[i], centroids[run.model.getLabels()[i]]);
        for (const auto& centroid : centroids) {
            ASSERT_LE(own, squaredDistance(points[i], centroid)) << "point " << i;
        }
    }
}

template <class Kind>
class RandomSetsAndCentroids : public ::testing::Test {
public:
    using Tested = CentroidClustering<Kind::kDim, typename Kind::T>;

    /// One set of points and one run.
    static void compareWithModel(Random& random, Tested& clustering, const Settings& settings,
                                 Variety& variety) {
        const auto points = randomPoints<Kind>(random);
        const auto found = outcomeOf<Kind>(clustering, points);
        if (points.size() < settings.k) {
            EXPECT_TRUE(found.clustering.clusters.empty() && found.clustering.boxes.empty() &&
                        found.centroids.empty());
            ++variety.too_few_points;
            return;
        }
        // Leftovers from an earlier run with more clusters.
        auto without_zeros = found;
        without_zeros.counts.resize(settings.k);
        EXPECT_TRUE(std::all_of(found.counts.begin() + static_cast<std::ptrdiff_t>(settings.k),
                                found.counts.end(), [](std::size_t count) { return count == 0; }));
        const auto first = firstCentroidOf<Kind>(without_zeros, points, settings);
        ASSERT_TRUE(first.has_value()) << "k " << settings.k << " iterations " << settings.max_iter
                                       << " tol " << settings.tol << ' ' << found;
        const KMeansModelRun<Kind> run(points, settings.k, settings.max_iter, settings.tol, *first);
        expectLabelsAreOfNearestCentroids<Kind>(run, points);
        variety.add(run, settings, *first);
    }
};
TYPED_TEST_SUITE(RandomSetsAndCentroids, PointKinds, PointKindNames);

TYPED_TEST(RandomSetsAndCentroids, GiveTheResultOfTheModelFromOneOfThePoints) {
    Variety variety;
    for (std::uint64_t seed = 0; seed < rounds(10'000U); ++seed) {
        Random random(seed);
        const Settings settings(random);
        typename TestFixture::Tested clustering(settings.k, settings.max_iter, settings.tol);
        this->compareWithModel(random, clustering, settings, variety);
        ASSERT_FALSE(this->HasFailure()) << "seed " << seed;
    }
    EXPECT_GT(variety.with_empty_clusters, rounds(100));
    EXPECT_GT(variety.with_far_moves, rounds(40));
    EXPECT_GT(variety.with_several_leaves, rounds(500));
    EXPECT_GT(variety.stopped_early, rounds(3000));
    EXPECT_GT(variety.long_runs, rounds(1000));
    EXPECT_GT(variety.from_other_points, rounds(4000));
    EXPECT_GT(variety.too_few_points, rounds(1000));
}

TYPED_TEST(RandomSetsAndCentroids, GiveTheSameWithAnObjectThatRanBefore) {
    Variety variety;
    for (std::uint64_t seed = 5000; seed < 5050; ++seed) {
        Random random(seed);
        Settings settings(random);
        typename TestFixture::Tested clustering(settings.k, settings.max_iter, settings.tol);
        for (int run = 0; run < 10; ++run) {
            this->compareWithModel(random, clustering, settings, variety);
            ASSERT_FALSE(this->HasFailure()) << "seed " << seed << " run " << run;
            settings.k = static_cast<std::size_t>(randomInt(random, 1, 20));
            ASSERT_TRUE(clustering.setClusterNumber(settings.k));
        }
    }
    EXPECT_GT(variety.from_other_points, 50);
}

// Enough centroids, in a small enough part of the space, that points are compared in the tree.
TYPED_TEST(RandomSetsAndCentroids, GiveTheResultOfTheModelFromManyCentroidsAndAPointFarAway) {
    Random random(1);
    Settings settings(random);
    settings.k = 90;
    settings.max_iter = 4;
    auto points = randomGridPoints<TypeParam>(random, 300, 0, 1000, 0.001);
    points.push_back(at<TypeParam>(1e6, 1e6, 1e6));
    const auto found = kMeansOf<TypeParam>(points, settings.k, settings.max_iter, settings.tol);
    EXPECT_TRUE(firstCentroidOf<TypeParam>(found, points, settings).has_value());
}

TYPED_TEST(RandomSetsAndCentroids, ContinueAfterAChangeOfExactlyTheTolerance) {
    int sets_where_it_matters = 0;
    for (std::uint64_t seed = 0; seed < 100'000 && sets_where_it_matters < 10; ++seed) {
        Random random(seed);
        const auto points = randomGridPoints<TypeParam>(random, 12, 0, 50, 1);
        const auto run = [&](double tol) {
            return KMeansModelRun<TypeParam>(points, 2, 9, tol, 0);
        };
        const double tol = run(1e-300).model.getChangesOfTotal()[1];
        if (tol == 0 || run(tol).outcome == run(std::nextafter(tol, kInfinity)).outcome) {
            continue;
        }
        ++sets_where_it_matters;
        // The probability that the first of twelve points is never drawn in this many runs is
        // 1e-15.
        bool seen = false;
        for (int draw = 0; draw < 400 && !seen; ++draw) {
            seen = kMeansOf<TypeParam>(points, 2, 9, tol) == run(tol).outcome;
        }
        EXPECT_TRUE(seen) << "seed " << seed;
    }
    EXPECT_EQ(sets_where_it_matters, 10);
}

TYPED_TEST(RandomSetsAndCentroids, GiveEachOfThePossibleOutcomesAndNoOther) {
    std::size_t most_outcomes = 0;
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        Random random(seed);
        const auto points = randomGridPoints<TypeParam>(random, 10, 0, 20, 1);
        std::vector<KMeansOutcome<TypeParam>> unseen;
        for (std::size_t first = 0; first < points.size(); ++first) {
            const auto outcome = KMeansModelRun<TypeParam>(points, 3, 2, 1e-9, first).outcome;
            if (std::find(unseen.begin(), unseen.end(), outcome) == unseen.end()) {
                unseen.push_back(outcome);
            }
        }
        most_outcomes = std::max(most_outcomes, unseen.size());
        const auto possible = unseen;
        CentroidClustering<TypeParam::kDim, typename TypeParam::T> clustering(3, 2, 1e-9);
        // The probability that one of ten points is never drawn in this many runs is 1e-18.
        for (int run = 0; run < 400; ++run) {
            const auto found = outcomeOf<TypeParam>(clustering, points);
            ASSERT_THAT(possible, ::testing::Contains(found)) << "seed " << seed;
            unseen.erase(std::remove(unseen.begin(), unseen.end(), found), unseen.end());
        }
        EXPECT_TRUE(unseen.empty()) << "seed " << seed;
    }
    EXPECT_GT(most_outcomes, 3U);
}

TYPED_TEST(RandomSetsAndCentroids, GiveTheResultOfTheModelForLargeSets) {
    for (std::uint64_t seed = 0; seed < 3; ++seed) {
        Random random(seed);
        const auto points = randomGridPoints<TypeParam>(random, 300, -30, 61, 0.25);
        CentroidClustering<TypeParam::kDim, typename TypeParam::T> clustering(40, 8, 1e-9);
        const auto found = outcomeOf<TypeParam>(clustering, points);
        Settings settings(random);
        settings.k = 40;
        settings.max_iter = 8;
        settings.tol = 1e-9;
        EXPECT_TRUE(firstCentroidOf<TypeParam>(found, points, settings).has_value());
    }
}

/// Groups of points and some noise, long in the last dimension, and as far from the origin as times
/// since 1970.
template <class Kind>
typename Kind::Points pointsFarFromTheOrigin(Random& random, std::size_t count, bool on_grid) {
    const double origin = Kind::kDim == 2 ? -1e6 : 1.6e15;
    typename Kind::Points points(count);
    for (auto& point : points) {
        const bool is_noise = randomInt(random, 0, 9) == 0;
        const double group = is_noise ? 50 * randomReal(random) : 20 * randomInt(random, -3, 3);
        const double x = group + 5 * randomReal(random);
        const double y = 3 * group + randomReal(random);
        const double z = origin + 5e9 * randomReal(random);
        point = on_grid ? at<Kind>(std::round(x), std::round(y), z) : at<Kind>(x + origin, y, z);
    }
    return points;
}

TYPED_TEST(RandomSetsAndCentroids, GiveTheResultOfTheModelForLargeSetsFarFromTheOrigin) {
    for (std::uint64_t seed = 0; seed < 6; ++seed) {
        Random random(seed);
        const auto points = pointsFarFromTheOrigin<TypeParam>(random, 400, seed % 2 == 0);
        Settings settings(random);
        settings.k = seed < 3 ? 7 : 50;
        settings.max_iter = 6;
        settings.tol = kUndefined;
        CentroidClustering<TypeParam::kDim, typename TypeParam::T> clustering(
            settings.k, settings.max_iter, settings.tol);
        const auto found = outcomeOf<TypeParam>(clustering, points);
        EXPECT_TRUE(firstCentroidOf<TypeParam>(found, points, settings).has_value())
            << "seed " << seed;
    }
}

template <class Kind>
class DistancesThatFloatHidesLeaveSetsThat : public ::testing::Test {};
using DoubleKinds = ::testing::Types<PointKind<2, double>, PointKind<3, double>>;
TYPED_TEST_SUITE(DistancesThatFloatHidesLeaveSetsThat, DoubleKinds, PointKindNames);

template <class Kind>
std::vector<double> centroidsOnLine(const std::vector<double>& xs, std::size_t k,
                                    std::size_t max_iter, double tol) {
    CentroidClustering<Kind::kDim, double> clustering(k, max_iter, tol);
    std::vector<double> centroids;
    for (const auto& centroid : outcomeOf<Kind>(clustering, line<Kind>(xs)).centroids) {
        centroids.push_back(centroid.coordinates[0]);
    }
    return centroids;
}

TYPED_TEST(DistancesThatFloatHidesLeaveSetsThat, BeginAtTheFirstOfThePointsThatSeemEquallyFar) {
    for (int run = 0; run < 200; ++run) {
        const auto near = centroidsOnLine<TypeParam>({0, 1, -1 - 1e-12}, 3, 1, 1e-9);
        EXPECT_THAT(near, ::testing::AnyOf(::testing::ElementsAre(0, 1, -1 - 1e-12),
                                           ::testing::ElementsAre(1, -1 - 1e-12, 0),
                                           ::testing::ElementsAre(-1 - 1e-12, 1, 0)));
        const auto far = centroidsOnLine<TypeParam>({0, 1e100, 5e100}, 3, 1, 1e-9);
        EXPECT_THAT(far, ::testing::AnyOf(::testing::ElementsAre(0, 1e100, 5e100),
                                          ::testing::ElementsAre(1e100, 0, 5e100),
                                          ::testing::ElementsAre(5e100, 0, 1e100)));
    }
}

// Starting from the first point, all points seem to coincide: the second cluster is empty, and its
// centroid moves to the point furthest from the moved first centroid, the last one.
TYPED_TEST(DistancesThatFloatHidesLeaveSetsThat, MoveEmptyClustersToTheFurthestPointAndGoOn) {
    int from_first = 0;
    for (int run = 0; run < 200; ++run) {
        const std::vector<double> xs = {0, 1e-50, 5e-50};
        const auto moved = centroidsOnLine<TypeParam>(xs, 2, 1, kInfinity);
        from_first += moved[1] == 5e-50 ? 1 : 0;
        // The run only continues after an iteration with an empty cluster.
        const auto ended = centroidsOnLine<TypeParam>(xs, 2, 20, kInfinity);
        EXPECT_NE(ended[0], (1e-50 + 5e-50) / 3);
    }
    EXPECT_GT(from_first, 20);
    EXPECT_LT(from_first, 140);
}

}  // namespace
}  // namespace kelvora::test
