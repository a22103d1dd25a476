// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "kelvora/distance_based_cluster_matcher.hpp"
#include "reference/distance_based_cluster_matcher.hpp"
#include "support/event_builders.hpp"

namespace kelvora::test {
namespace {

using reference::pairsOf;

using Model = reference::DistanceBasedClusterMatcher;
using Clusters = Model::Clusters;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

bool chance(Random& random, int one_in) {
    return randomInt(random, 1, one_in) == 1;
}

template <std::size_t size>
float oneOf(Random& random, const std::array<float, size>& values) {
    return values[random() % size];
}

float fraction(Random& random) {
    return static_cast<float>(randomInt(random, 0, (1 << 24) - 1)) / (1 << 24);
}

/// Two batches and the thresholds to match them with.
struct MatcherCase {
    /// Whole numbers, any numbers, numbers of all magnitudes, only one number.
    enum class Kind { kGrid, kPlane, kMagnitudes, kPlace };

    explicit MatcherCase(std::uint64_t seed)
        : random(seed),
          kind(static_cast<Kind>(randomInt(random, 0, 3))),
          side(randomInt(random, 1, 40)),
          spoilt_one_in(chance(random, 3) ? 20 : 0),
          first(batch()),
          second(batch()),
          distance_threshold(chooseDistanceThreshold()),
          size_threshold(oneOf<10>(random, {0, 1, 2, 2, 2, 3, kInfinity, kInfinity, -1, kNaN})) {}

    Random random;
    Kind kind;
    int side;
    int spoilt_one_in;
    Clusters first;
    Clusters second;
    float distance_threshold;
    float size_threshold;

private:
    Clusters batch() {
        Clusters clusters;
        const int count = randomInt(random, 0, 30);
        for (int i = 0; i < count; ++i) {
            const float width = size();
            const float height = size();
            const float x = coordinate() - width / 2;
            const float y = coordinate() - height / 2;
            clusters.emplace_back(x, y, width, height, 0);
        }
        return clusters;
    }

    float coordinate() {
        const auto whole = static_cast<float>(randomInt(random, -side, side));
        switch (kind) {
            case Kind::kGrid:
                return whole;
            case Kind::kPlane:
                return whole + fraction(random);
            case Kind::kMagnitudes:
                return whole * std::pow(10.0F, static_cast<float>(randomInt(random, -45, 38)));
            default:
                return 3;
        }
    }

    float size() {
        constexpr std::array<float, 3> kNotFinite = {kInfinity, -kInfinity, kNaN};
        if (spoilt_one_in > 0 && chance(random, spoilt_one_in)) {
            return oneOf(random, kNotFinite);
        }
        return oneOf<3>(random, {0, 2, 4});
    }

    /// Often just about the distance of a pair.
    float chooseDistanceThreshold() {
        if (chance(random, 2) || first.empty() || second.empty()) {
            return oneOf<14>(random, {0, 1, 2, 5, 10, 25, -5, 0.5F, 1e-30F, 1e10F, 1e19F, 1e20F,
                                      kInfinity, kNaN});
        }
        const auto a = first[random() % first.size()].getCenter();
        const auto b = second[random() % second.size()].getCenter();
        const float distance = std::hypot(a.x - b.x, a.y - b.y);
        return std::nextafter(distance, oneOf<3>(random, {0, distance, kInfinity}));
    }
};

/// Statistics of the cases of a run, to detect trivial ones.
struct Variety {
    void add(const std::vector<Model::Candidate>& candidates, std::size_t pairs,
             float squared_threshold) {
        none += pairs == 0 ? 1 : 0;
        contested += pairs > 1 && candidates.size() > 2 * pairs ? 1 : 0;
        const bool has_rim =
            !candidates.empty() && std::get<0>(candidates.back()) == squared_threshold;
        at_the_rim += has_rim && std::isfinite(squared_threshold) ? 1 : 0;
    }

    int none = 0;
    int contested = 0;
    int at_the_rim = 0;
};

/// Ten thousand in total, a thousand per test, so that tests can run in parallel.
class ThousandRandomBatches : public ::testing::TestWithParam<std::uint64_t> {};

TEST_P(ThousandRandomBatches, GiveThePairsOfTheModel) {
    Variety variety;
    for (std::uint64_t seed = GetParam(); seed < GetParam() + 1000; ++seed) {
        MatcherCase batches(seed);
        const Model model(batches.distance_threshold, batches.size_threshold);
        DistanceBasedClusterMatcher matcher(batches.distance_threshold, batches.size_threshold);
        const bool with_itself = seed % 5 == 0;
        Clusters& second = with_itself ? batches.first : batches.second;
        const std::size_t pairs =
            matcher.matchClusters(batches.first, second, static_cast<int>(seed));
        ASSERT_EQ(pairsOf(matcher), model.match(batches.first, second, static_cast<int>(seed)))
            << "seed " << seed;
        ASSERT_EQ(pairs, matcher.getPairRecords().size());
        variety.add(model.candidates(batches.first, second), pairs,
                    batches.distance_threshold * batches.distance_threshold);
    }
    EXPECT_GT(variety.none, 100);
    EXPECT_GT(variety.contested, 300);
    EXPECT_GT(variety.at_the_rim, 100);
}

INSTANTIATE_TEST_SUITE_P(FromSeed, ThousandRandomBatches,
                         ::testing::Range<std::uint64_t>(0, 10'000, 1000));

TEST(DistanceBasedClusterMatcherRandom, GivesThePairsOfTheModelInLargeBatches) {
    Random random(1);
    std::array<Clusters, 2> batches;
    for (Clusters& clusters : batches) {
        for (int i = 0; i < 2000; ++i) {
            const float x = 1280 * fraction(random);
            const float y = 720 * fraction(random);
            const float size = 20 * fraction(random);
            clusters.emplace_back(x, y, size, size, 0);
        }
    }
    DistanceBasedClusterMatcher matcher(20, 5);
    EXPECT_GT(matcher.matchClusters(batches[0], batches[1]), 500U);
    EXPECT_EQ(pairsOf(matcher), (Model(20, 5).match(batches[0], batches[1], 0)));
}

// Comparing all would take minutes.
TEST(DistanceBasedClusterMatcherRandom, MatchesHugeBatchesQuickly) {
    constexpr int kSide = 512;
    Clusters clusters;
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            clusters.emplace_back(static_cast<float>(3 * x), static_cast<float>(3 * y), 2.0F, 2.0F,
                                  0);
        }
    }
    Clusters moved = clusters;
    for (ClusterGeometry& cluster : moved) {
        cluster.x += 1;
    }
    DistanceBasedClusterMatcher matcher(1, 0);
    EXPECT_EQ(matcher.matchClusters(clusters, moved), clusters.size());
    for (const auto& record : matcher.getPairRecords()) {
        ASSERT_EQ(record.first_index, record.second_index);
    }
}

}  // namespace
}  // namespace kelvora::test
