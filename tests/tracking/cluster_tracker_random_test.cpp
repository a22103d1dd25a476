// SPDX-License-Identifier: MIT
// Random clusters: invariants of the tracks, and comparison with a model of the tracker.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <set>
#include <tuple>
#include <vector>

#include "kelvora/cluster_tracker.hpp"
#include "reference/cluster_tracker.hpp"
#include "support/event_builders.hpp"
#include "support/tracks.hpp"

namespace kelvora::test {
namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr std::array<float, 10> kStrangeNumbers = {
    0,     -1,     1e-38F,    1e-20F,     1e18F,
    1e38F, -1e38F, kInfinity, -kInfinity, std::numeric_limits<float>::quiet_NaN()};

float randomFloat(Random& random, float low, float high) {
    return low + (high - low) * static_cast<float>(randomInt(random, 0, 1 << 20)) / (1 << 20);
}

/// Objects that move, appear, disappear, merge and break apart, among clusters of noise.
class RandomClusters {
public:
    explicit RandomClusters(std::uint64_t seed)
        : random(seed), strange_one_in(seed % 3 == 0 ? 15 : 0) {
        for (int i = randomInt(random, 0, 8); i > 0; --i) {
            objects.push_back({randomFloat(random, 0, 300), randomFloat(random, 0, 200),
                               randomFloat(random, -12, 12), randomFloat(random, -12, 12),
                               randomFloat(random, 5, 50), randomFloat(random, 5, 50)});
        }
    }

    std::vector<ClusterGeometry> next() {
        time += static_cast<std::uint64_t>(randomInt(random, 0, 3)) * 5'000;
        clusters.clear();
        if (randomInt(random, 1, 12) == 1) {
            return clusters;
        }
        for (Object& object : objects) {
            object.x += object.vx;
            object.y += object.vy;
            show(object);
        }
        for (int i = randomInt(random, 0, 3); i > 0; --i) {
            add(randomFloat(random, 0, 300), randomFloat(random, 0, 200),
                randomFloat(random, 0, 80), randomFloat(random, 0, 80));
        }
        std::shuffle(clusters.begin(), clusters.end(), random);
        return clusters;
    }

private:
    struct Object {
        float x, y, vx, vy, width, height;
    };

    void show(const Object& object) {
        switch (randomInt(random, 1, 10)) {
            case 1:
                break;
            case 2:  // pieces
                add(object.x, object.y, object.width / 3, object.height);
                add(object.x + object.width * 2 / 3, object.y, object.width / 3, object.height);
                break;
            case 3:  // with its surroundings
                add(object.x - 10, object.y - 10, object.width + 40, object.height + 40);
                break;
            default:
                add(object.x, object.y, object.width, object.height);
        }
    }

    void add(float x, float y, float width, float height) {
        clusters.emplace_back(orStrange(x), orStrange(y), orStrange(width), orStrange(height),
                              time);
    }

    float orStrange(float usual) {
        const bool is_strange = strange_one_in > 0 && randomInt(random, 1, strange_one_in) == 1;
        return is_strange ? kStrangeNumbers[random() % kStrangeNumbers.size()] : usual;
    }

    Random random;
    int strange_one_in;
    std::uint64_t time = 0;
    std::vector<Object> objects;
    std::vector<ClusterGeometry> clusters;
};

struct Parameters {
    explicit Parameters(std::uint64_t seed)
        : max_distance(std::array<float, 5>{0, 5, 20, 100, kInfinity}[seed % 5]),
          max_size_change(std::array<float, 4>{0, 5, 15, kInfinity}[seed / 5 % 4]),
          max_missed(static_cast<int>(seed / 20 % 5)),
          min_hits(static_cast<int>(1 + seed / 7 % 4)) {}

    ClusterTracker makeTracker() const {
        return ClusterTracker(max_distance, max_size_change, max_missed, min_hits);
    }

    float max_distance;
    float max_size_change;
    int max_missed;
    int min_hits;
};

bool hasArea(const ClusterGeometry& cluster) {
    return cluster.width > 0 && cluster.height > 0 && std::isfinite(cluster.width) &&
           std::isfinite(cluster.height) && std::isfinite(cluster.x) && std::isfinite(cluster.y);
}

/// Compares the tracker's output with its input and its previous output.
class Observer {
public:
    explicit Observer(const Parameters& parameters_) : parameters(parameters_) {}

    void check(const std::vector<ClusterGeometry>& clusters, const std::vector<int>& ids,
               const std::vector<Track>& tracks) {
        checkIds(clusters, ids, tracks);
        int last_id = 0;
        for (const Track& track : tracks) {
            ASSERT_GT(track.id, last_id);
            last_id = track.id;
            checkTrack(track);
            if (track.cluster >= 0) {
                ASSERT_EQ(ids.at(static_cast<std::size_t>(track.cluster)), track.id);
            }
        }
        before = tracks;
    }

    int hidden = 0;     ///< Number of tracks, once per update.
    int confirmed = 0;  ///< Likewise.
    int left_over = 0;  ///< Clusters with area and without a track.

private:
    void checkIds(const std::vector<ClusterGeometry>& clusters, const std::vector<int>& ids,
                  const std::vector<Track>& tracks) {
        ASSERT_EQ(ids.size(), clusters.size());
        std::set<int> seen;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            if (ids[i] == 0) {
                left_over += hasArea(clusters[i]) ? 1 : 0;
                continue;
            }
            ASSERT_GT(ids[i], 0);
            ASSERT_TRUE(hasArea(clusters[i]));
            ASSERT_TRUE(seen.insert(ids[i]).second);
            const auto track = std::find_if(tracks.begin(), tracks.end(),
                                            [&](const Track& t) { return t.id == ids[i]; });
            ASSERT_NE(track, tracks.end());
            ASSERT_EQ(track->cluster, static_cast<int>(i));
            ASSERT_EQ(track->box.x, clusters[i].x);
        }
    }

    void checkTrack(const Track& track) {
        const bool is_confirmed = track.state == TrackState::Confirmed;
        confirmed += is_confirmed ? 1 : 0;
        hidden += track.is_hidden ? 1 : 0;
        ASSERT_EQ(is_confirmed, track.hits >= parameters.min_hits);
        ASSERT_LE(track.missed, is_confirmed ? parameters.max_missed : 0);
        ASSERT_FALSE(track.is_hidden && track.cluster >= 0);
        const auto old = std::find_if(before.begin(), before.end(),
                                      [&](const Track& t) { return t.id == track.id; });
        if (old == before.end()) {
            ASSERT_GT(track.id, newest_id);
            ASSERT_EQ(track.hits, 1);
            newest_id = track.id;
        } else if (track.cluster >= 0) {
            ASSERT_EQ(track.hits, old->hits + 1);
            ASSERT_EQ(track.missed, 0);
        } else {
            ASSERT_EQ(track.hits, old->hits);
            ASSERT_EQ(track.missed, old->missed + (track.is_hidden ? 0 : 1));
        }
    }

    Parameters parameters;
    std::vector<Track> before;
    int newest_id = 0;
};

void expectSame(const std::vector<Track>& tracks,
                const std::vector<reference::ClusterTracker::Object>& objects) {
    using Sighting = reference::ClusterTracker::Sighting;
    ASSERT_EQ(tracks.size(), objects.size());
    for (std::size_t k = 0; k < tracks.size(); ++k) {
        const Track& track = tracks[k];
        const reference::ClusterTracker::Object& object = objects[k];
        ASSERT_EQ(
            std::tie(track.id, track.cluster, track.hits, track.missed, track.is_hidden),
            std::tie(object.id, object.cluster, object.hits, object.missed, object.is_hidden));
        ASSERT_EQ(track.state == TrackState::Confirmed, object.is_confirmed);
        ASSERT_NEAR(track.box.x, object.x, 0.01);
        ASSERT_NEAR(track.box.y, object.y, 0.01);
        ASSERT_NEAR(track.box.width, object.width, 0.01);
        ASSERT_NEAR(track.box.height, object.height, 0.01);
        ASSERT_NEAR(track.vx, reference::ClusterTracker::velocity(object, &Sighting::x), 0.1);
        ASSERT_NEAR(track.vy, reference::ClusterTracker::velocity(object, &Sighting::y), 0.1);
    }
}

class HundredRandomScenes : public testing::TestWithParam<std::uint64_t> {};

TEST_P(HundredRandomScenes, KeepTracksConsistent) {
    int hidden = 0;
    int confirmed = 0;
    int left_over = 0;
    for (std::uint64_t seed = GetParam(); seed < GetParam() + 100; ++seed) {
        SCOPED_TRACE(seed);
        RandomClusters scene(seed);
        const Parameters parameters(seed);
        ClusterTracker tracker = parameters.makeTracker();
        Observer observer(parameters);
        for (int i = 0; i < 60; ++i) {
            const std::vector<ClusterGeometry> clusters = scene.next();
            const std::vector<int> ids = tracker.update(clusters);
            observer.check(clusters, ids, tracker.getTracks());
            ASSERT_FALSE(HasFatalFailure());
        }
        hidden += observer.hidden;
        confirmed += observer.confirmed;
        left_over += observer.left_over;
    }
    // Not all scenes are trivial.
    EXPECT_GT(hidden, 500);
    EXPECT_GT(confirmed, 5'000);
    EXPECT_GT(left_over, 500);
}

INSTANTIATE_TEST_SUITE_P(FromSeed, HundredRandomScenes,
                         testing::Range<std::uint64_t>(0, 1000, 100));

TEST(ClusterTrackerRandom, GivesTheSameTracksForTheSameClusters) {
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        RandomClusters scene(seed);
        RandomClusters same_scene(seed);
        ClusterTracker tracker;
        ClusterTracker other;
        for (int i = 0; i < 60; ++i) {
            ASSERT_EQ(tracker.update(scene.next()), other.update(same_scene.next()));
            const std::vector<Track> tracks = tracker.getTracks();
            const std::vector<Track> other_tracks = other.getTracks();
            ASSERT_EQ(tracks.size(), other_tracks.size());
            for (std::size_t k = 0; k < tracks.size(); ++k) {
                ASSERT_EQ(std::tie(tracks[k].id, tracks[k].vx, tracks[k].vy),
                          std::tie(other_tracks[k].id, other_tracks[k].vx, other_tracks[k].vy));
            }
        }
    }
}

// Without extreme numbers. The model rounds less, which would show at a largest distance of 0.
TEST(ClusterTrackerRandom, FollowsTheSameTracksAsTheModel) {
    int compared = 0;
    for (std::uint64_t seed = 1; seed < 1000; ++seed) {
        Parameters parameters(seed);
        if (seed % 3 == 0 || parameters.max_distance == 0) {
            continue;
        }
        SCOPED_TRACE(seed);
        RandomClusters scene(seed);
        ClusterTracker tracker = parameters.makeTracker();
        reference::ClusterTracker model(parameters.max_distance, parameters.max_size_change,
                                        parameters.max_missed, parameters.min_hits);
        for (int i = 0; i < 60; ++i) {
            const std::vector<ClusterGeometry> clusters = scene.next();
            ASSERT_EQ(tracker.update(clusters), model.update(clusters)) << "update " << i;
            ASSERT_NO_FATAL_FAILURE(expectSame(tracker.getTracks(), model.getObjects()));
            compared += static_cast<int>(model.getObjects().size());
        }
    }
    EXPECT_GT(compared, 100'000);
}

}  // namespace
}  // namespace kelvora::test
