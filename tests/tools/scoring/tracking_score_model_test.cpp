// SPDX-License-Identifier: MIT
// Compares the whole score with one that tries all assignments and counts from the written history
// of each object.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "scoring/tracking_score.hpp"
#include "support/event_builders.hpp"

namespace kelvora::scoring {
namespace {

using test::Random;
using test::randomInt;

double overlapOf(const Box& a, const Box& b) {
    const double left = std::max(a.x, b.x);
    const double right = std::max(left, std::min(a.x + a.width, b.x + b.width));
    const double top = std::max(a.y, b.y);
    const double bottom = std::max(top, std::min(a.y + a.height, b.y + b.height));
    const double shared = (right - left) * (bottom - top);
    return shared / (a.width * a.height + b.width * b.height - shared);
}

using Pairs = std::vector<std::pair<TruthBox, ClusterBox>>;

double totalOverlap(const Pairs& pairs) {
    double total = 0.0;
    for (const auto& [object, cluster] : pairs) {
        total += overlapOf(object.box, cluster.box);
    }
    return total;
}

/// The best of all ways to pair these objects, from number `next` on, with these clusters.
Pairs bestPairs(const std::vector<TruthBox>& objects, std::size_t next,
                const std::vector<ClusterBox>& clusters, double min_iou) {
    if (next == objects.size()) {
        return {};
    }
    Pairs best = bestPairs(objects, next + 1, clusters, min_iou);
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        if (overlapOf(objects[next].box, clusters[i].box) < min_iou) {
            continue;
        }
        std::vector<ClusterBox> rest = clusters;
        rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(i));
        Pairs pairs = bestPairs(objects, next + 1, rest, min_iou);
        pairs.emplace_back(objects[next], clusters[i]);
        if (pairs.size() > best.size() ||
            (pairs.size() == best.size() && totalOverlap(pairs) > totalOverlap(best))) {
            best = pairs;
        }
    }
    return best;
}

void removeCluster(std::vector<ClusterBox>& clusters, std::uint64_t track) {
    clusters.erase(
        std::find_if(clusters.begin(), clusters.end(),
                     [track](const ClusterBox& cluster) { return cluster.track == track; }));
}

class Model {
public:
    explicit Model(const ScoreOptions& options_) : options(options_) {}

    ScoreFigures score(const std::vector<Frame>& frames) {
        figures.has_tracks = options.has_tracks;
        for (const Frame& frame : frames) {
            add(frame);
        }
        for (const auto& [id, tracks] : history) {
            addTrajectory(tracks);
        }
        return figures;
    }

private:
    void add(const Frame& frame) {
        ++figures.frames;
        figures.clusters += frame.clusters.size();
        std::vector<ClusterBox> clusters = frame.clusters;
        std::vector<TruthBox> objects;
        std::vector<TruthBox> ignored;
        for (const TruthBox& object : frame.truth) {
            const bool is_ignored = (!options.include_still && !object.is_moving) ||
                                    object.visibility < options.min_visibility;
            (is_ignored ? ignored : objects).push_back(object);
        }
        figures.objects += objects.size();
        figures.ignored_objects += ignored.size();
        for (const TruthBox& object : objects) {
            history[object.id].push_back(0);
        }

        Pairs pairs = options.has_tracks ? pairsThatLast(objects, clusters) : Pairs();
        const Pairs others = bestPairs(objects, 0, clusters, options.min_iou);
        for (const auto& pair : others) {
            removeCluster(clusters, pair.second.track);
        }
        pairs.insert(pairs.end(), others.begin(), others.end());
        previous.clear();
        for (const auto& [object, cluster] : pairs) {
            previous[object.id] = cluster.track;
            history[object.id].back() = cluster.track;
        }
        figures.matches += pairs.size();
        figures.iou_sum += totalOverlap(pairs);
        figures.ignored_clusters += bestPairs(ignored, 0, clusters, options.min_iou).size();
    }

    /// Removes the pairs of the last frame that are still valid from objects and clusters.
    Pairs pairsThatLast(std::vector<TruthBox>& objects, std::vector<ClusterBox>& clusters) const {
        Pairs pairs;
        for (const TruthBox& object : objects) {
            for (const ClusterBox& cluster : clusters) {
                const auto known = previous.find(object.id);
                if (known != previous.end() && known->second == cluster.track &&
                    overlapOf(object.box, cluster.box) >= options.min_iou) {
                    pairs.emplace_back(object, cluster);
                }
            }
        }
        for (const auto& [kept, cluster] : pairs) {
            const std::int64_t id = kept.id;
            objects.erase(std::find_if(objects.begin(), objects.end(),
                                       [id](const TruthBox& object) { return object.id == id; }));
            removeCluster(clusters, cluster.track);
        }
        return pairs;
    }

    void addTrajectory(const std::vector<std::uint64_t>& tracks) {
        std::vector<std::uint64_t> found;
        for (const std::uint64_t track : tracks) {
            if (track != 0) {
                found.push_back(track);
            }
        }
        for (std::size_t i = 1; i < found.size(); ++i) {
            figures.switches += found[i] != found[i - 1] ? 1 : 0;
        }
        std::uint64_t beginnings = 0;
        for (std::size_t i = 0; i < tracks.size(); ++i) {
            beginnings += tracks[i] != 0 && (i == 0 || tracks[i - 1] == 0) ? 1 : 0;
        }
        figures.fragmentations += beginnings > 0 ? beginnings - 1 : 0;
        const double share = static_cast<double>(found.size()) / static_cast<double>(tracks.size());
        ++figures.trajectories;
        figures.mostly_tracked += share > 0.799999 ? 1 : 0;
        figures.mostly_lost += share < 0.199999 ? 1 : 0;
        figures.partially_tracked += share > 0.199999 && share < 0.799999 ? 1 : 0;
    }

    ScoreOptions options;
    ScoreFigures figures;
    std::map<std::int64_t, std::uint64_t> previous;  ///< Tracks of objects in the last frame.
    std::map<std::int64_t, std::vector<std::uint64_t>> history;  ///< 0 where missed.
};

double randomShare(Random& random) {
    return randomInt(random, 0, 1'000'000) * 1e-6;
}

/// Boxes so close together that many overlap. No two overlaps are equal.
Box randomBox(Random& random) {
    return {8 * randomShare(random), 8 * randomShare(random), 10 + 4 * randomShare(random),
            10 + 4 * randomShare(random)};
}

std::vector<Frame> randomFrames(Random& random) {
    std::vector<Frame> frames(static_cast<std::size_t>(randomInt(random, 1, 12)));
    for (Frame& frame : frames) {
        for (std::int64_t id = 1; id <= 4; ++id) {
            if (randomInt(random, 0, 3) > 0) {
                frame.truth.push_back(
                    {0, randomBox(random), id, randomShare(random), randomInt(random, 0, 3) > 0});
            }
        }
        for (std::uint64_t track = 1; track <= 5; ++track) {
            if (randomInt(random, 0, 3) > 0) {
                frame.clusters.push_back({0, randomBox(random), track});
            }
        }
    }
    return frames;
}

void expectEqual(const ScoreFigures& actual, const ScoreFigures& expected) {
    EXPECT_EQ(actual.frames, expected.frames);
    EXPECT_EQ(actual.objects, expected.objects);
    EXPECT_EQ(actual.ignored_objects, expected.ignored_objects);
    EXPECT_EQ(actual.clusters, expected.clusters);
    EXPECT_EQ(actual.ignored_clusters, expected.ignored_clusters);
    EXPECT_EQ(actual.matches, expected.matches);
    EXPECT_NEAR(actual.iou_sum, expected.iou_sum, 1e-9);
    EXPECT_EQ(actual.switches, expected.switches);
    EXPECT_EQ(actual.fragmentations, expected.fragmentations);
    EXPECT_EQ(actual.trajectories, expected.trajectories);
    EXPECT_EQ(actual.mostly_tracked, expected.mostly_tracked);
    EXPECT_EQ(actual.partially_tracked, expected.partially_tracked);
    EXPECT_EQ(actual.mostly_lost, expected.mostly_lost);
}

void compareManyWithModel(std::uint64_t seed, const ScoreOptions& options) {
    Random random(seed);
    for (int i = 0; i < 200; ++i) {
        const std::vector<Frame> frames = randomFrames(random);
        TrackingScore score(options);
        for (const Frame& frame : frames) {
            score.add(frame);
        }
        expectEqual(score.figures(), Model(options).score(frames));
        ASSERT_FALSE(testing::Test::HasFailure()) << "case " << i;
    }
}

TEST(TrackingScoreModel, AgreesForTracks) {
    compareManyWithModel(1, {0.5, 0.0, false, true});
    compareManyWithModel(2, {0.3, 0.0, false, true});
    compareManyWithModel(3, {0.7, 0.0, false, true});
}

TEST(TrackingScoreModel, AgreesForClustersWithoutTracks) {
    compareManyWithModel(4, {0.4, 0.0, false, false});
}

TEST(TrackingScoreModel, AgreesWithOtherObjectsIgnored) {
    compareManyWithModel(5, {0.4, 0.5, false, true});
    compareManyWithModel(6, {0.4, 0.5, true, true});
    compareManyWithModel(7, {0.4, 0.0, true, true});
}

}  // namespace
}  // namespace kelvora::scoring
