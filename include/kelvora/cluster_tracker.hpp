// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/distance_based_cluster_matcher.hpp"
#include "kelvora/export.hpp"

namespace kelvora {

/// Follows objects from one batch of clusters to the next, and gives each object a number.
///
/// This is tracking by detection without appearance, similar to SORT (A. Bewley, Z. Ge, L. Ott, F.
/// Ramos, B. Upcroft: "Simple Online and Realtime Tracking", ICIP 2016): each track predicts where
/// its object is with a motion model, the predictions are associated with the clusters, and tracks
/// begin and end depending on how often this succeeds. Unlike SORT, the motion model is a straight
/// line through the last positions (least squares) instead of a Kalman filter. A
/// `DistanceBasedClusterMatcher` associates by distance and size, nearest pairs first.
///
/// - A confirmed track without a cluster takes a free cluster of another size if the two boxes
///   overlap by 0.6 or more (intersection over union), and no other confirmed track lies there.
///   This happens when an object enters or leaves the view.
/// - A cluster without a track begins a tentative track, unless it lies largely within the box of a
///   confirmed track (a fragment of the object's outline) or contains one
///   (several objects that merged).
/// - A track is confirmed after `min_hits` matches. A tentative track ends when it is not matched.
/// - A confirmed track that is not matched continues along its line. While the predicted box lies
///   largely within a cluster, the object counts as hidden: merged with another object. It may stay
///   hidden for as many updates as it was matched before. Otherwise the track ends after
///   `max_missed` updates.
///
/// \code{.cpp}
/// kelvora::ClusterTracker tracker;
/// for (int i = 0; i < 5; ++i) {
///     const auto time = static_cast<unsigned long long>(i) * 10000;
///     const float x = 100.0F + 3.0F * static_cast<float>(i);
///     const std::vector<int> ids = tracker.update({{x, 50, 20, 20, time}});
///     std::cout << "track " << ids[0] << " at " << x << '\n';
/// }
/// std::cout << tracker.getTracks()[0].vx << " pixels per second\n";  // 300
/// \endcode
///
/// The same batches always give the same tracks. Only one thread at a time may use an object.
class KELVORA_EXPORT ClusterTracker {
public:
    /// Whether a track has been matched often enough to be trusted.
    enum class State {
        Tentative,  ///< Matched fewer than `min_hits` times; ends when it is not matched.
        Confirmed   ///< Matched at least `min_hits` times.
    };

    /// An object and its state after the last update.
    struct Track {
        int id;       ///< From 1, in the order in which tracks begin; never used again.
        State state;  ///< Tentative or confirmed.

        /// The cluster of the last update. Without one, the predicted box: the usual size around
        /// the predicted centre.
        ClusterGeometry box;

        float vx;     ///< Velocity of the centre to the right, pixels per second.
        float vy;     ///< Velocity of the centre downwards, pixels per second.
        int cluster;  ///< Index of the cluster of the last update, -1 for none.
        int hits;     ///< Updates with a cluster.
        int missed;   ///< Updates since the last cluster, not counting hidden ones.

        /// Whether the object had no cluster in the last update, but its predicted box lies largely
        /// within the cluster of another.
        bool is_hidden;
    };

    static constexpr float kDefaultMaxDistance = 20.0F;    ///< Pixels.
    static constexpr float kDefaultMaxSizeChange = 15.0F;  ///< Pixels.
    static constexpr int kDefaultMaxMissed = 10;           ///< Updates.
    static constexpr int kDefaultMinHits = 3;              ///< Updates.

    /// \param max_distance  Largest distance between the centres of a predicted box and its
    ///     cluster, pixels, at least 0. A new track has no velocity yet, so this is also how far
    ///     its object may move between two updates.
    /// \param max_size_change  Largest difference in width, and in height, between a cluster and
    ///     the track's usual size, pixels, at least 0.
    /// \param max_missed  Updates without a cluster that a confirmed track survives, at least 0.
    /// \param min_hits  Updates with a cluster that confirm a track, at least 1.
    /// \throws std::invalid_argument  for an argument below its bound or NaN.
    explicit ClusterTracker(float max_distance = kDefaultMaxDistance,
                            float max_size_change = kDefaultMaxSizeChange,
                            int max_missed = kDefaultMaxMissed, int min_hits = kDefaultMinHits);

    /// Updates the tracks with the clusters of the next window. Takes about n log n time for n
    /// tracks and clusters that do not overlap. Each track or cluster without a match is compared
    /// with all others, so that the worst case is n^2.
    ///
    /// \param clusters  The result of one `generateClusters`. All have the same timestamp, which
    ///     must not be lower than in the previous update. An empty vector means that no object was
    ///     seen; predictions then stay where they are. Clusters without area, or whose centre or
    ///     area is not finite, belong to no track.
    /// \returns the id of the track of each cluster, 0 for none.
    /// \throws std::invalid_argument  if the timestamp is lower than before.
    /// \throws std::bad_alloc  if there is not enough memory.
    /// \note After an exception, the tracker is as it was before the call.
    std::vector<int> update(const std::vector<ClusterGeometry>& clusters);

    /// Returns the tracks after the last update, tentative ones included.
    /// \returns copies, by ascending id.
    std::vector<Track> getTracks() const;

    /// Ends all tracks. Their ids are not used again.
    void reset();

private:
    /// A position at which a track was matched.
    struct Sighting {
        std::uint64_t timestamp;
        float x, y, width, height;  ///< Centre and size, pixels.
    };

    struct Target {
        Track track;
        std::vector<Sighting> sightings;  ///< The latest, oldest first.
        int hidden = 0;                   ///< Hidden updates since the last sighting.
    };

    KELVORA_NO_EXPORT std::vector<int> advance(const std::vector<ClusterGeometry>& clusters);
    KELVORA_NO_EXPORT void predictTargets();
    KELVORA_NO_EXPORT void matchTargets(std::vector<ClusterGeometry> clusters);
    KELVORA_NO_EXPORT void matchByOverlap(const std::vector<ClusterGeometry>& clusters);
    KELVORA_NO_EXPORT bool hidesAnother(const ClusterGeometry& cluster, const Target& target) const;
    KELVORA_NO_EXPORT void missTargets(const std::vector<ClusterGeometry>& clusters);
    KELVORA_NO_EXPORT void beginTargets(const std::vector<ClusterGeometry>& clusters);
    KELVORA_NO_EXPORT void endTargets();
    KELVORA_NO_EXPORT void sight(Target& target, const ClusterGeometry& cluster,
                                 std::size_t index) const;
    KELVORA_NO_EXPORT bool showsConfirmed(const ClusterGeometry& cluster) const;
    KELVORA_NO_EXPORT std::vector<int> idsOfClusters(std::size_t cluster_count) const;

    DistanceBasedClusterMatcher matcher;
    int max_missed;
    int min_hits;
    int next_id = 1;
    std::uint64_t last_timestamp = 0;
    std::vector<Target> targets;
};

}  // namespace kelvora
