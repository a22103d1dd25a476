// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/distance_based_cluster_matcher.hpp"
#include "kelvora/export.hpp"

namespace kelvora {

/// Follows objects from batch to batch of clusters, and gives each a number.
///
/// Tracking by detection without appearance, in the manner of SORT (A. Bewley, Z. Ge, L. Ott, F.
/// Ramos, B. Upcroft: "Simple Online and Realtime Tracking", ICIP 2016): each track predicts where
/// its object is by a motion model, the predictions are associated with the clusters, and tracks
/// begin and end by how often that succeeds. Other than there, the velocity is that of a straight
/// line through the last positions (least squares) rather than a Kalman filter's, and association
/// is by distance and size with a `DistanceBasedClusterMatcher`: nearest pairs first.
///
/// - A confirmed track that is left over takes a free cluster of another size if the two boxes
///   overlap by 0.6 or more (intersection over union), and no other confirmed track lies there: an
///   object that enters or leaves the view.
/// - A cluster that no track claims begins a tentative track, unless it is largely a part of a
///   confirmed track's box or contains one: an object's outline that fell to pieces, or several
///   objects that merged into one cluster.
/// - A track is confirmed once it has been matched `min_hits` times. A tentative one ends when it is
///   not matched.
/// - A confirmed track that is not matched goes on along its line. While the predicted box lies
///   largely within some cluster, the object is taken to be hidden there, merged with another one:
///   for as many updates as the track has been matched. Otherwise it ends after `max_missed`
///   updates.
///
/// Nothing is random, and no state is shared: the same batches give the same tracks. One object
/// serves one thread at a time.
class KELVORA_EXPORT ClusterTracker {
public:
    /// Whether a track has been matched often enough to be believed.
    enum class State {
        Tentative,  ///< Not yet; ends as soon as it is not matched.
        Confirmed   ///< `min_hits` times at least.
    };

    /// What is known of an object.
    struct Track {
        int id;       ///< From 1, in the order in which tracks begin; never used again.
        State state;  ///< Tentative or confirmed.

        /// The cluster of the last update or, for a track that has none, the predicted box: the
        /// usual size around the predicted centre.
        ClusterGeometry box;

        float vx;     ///< Velocity of the centre, pixels per second.
        float vy;     ///< The same, downwards.
        int cluster;  ///< Index of the cluster of the last update, -1 for none.
        int hits;     ///< Updates with a cluster.
        int missed;   ///< Updates without a cluster since, but those while hidden.

        /// Whether there was no cluster of its own in the last update, but the predicted box lies
        /// largely within another one.
        bool is_hidden;
    };

    static constexpr float kDefaultMaxDistance = 20.0F;    ///< Pixels.
    static constexpr float kDefaultMaxSizeChange = 15.0F;  ///< Pixels.
    static constexpr int kDefaultMaxMissed = 10;           ///< Updates.
    static constexpr int kDefaultMinHits = 3;              ///< Updates.

    /// \param max_distance  Largest distance between the centres of a predicted box and its cluster,
    ///     pixels, at least 0. A new track has no velocity yet: it bounds what an object may move
    ///     between two updates.
    /// \param max_size_change  Largest difference in width, and in height, between a cluster and the
    ///     track's usual size, pixels, at least 0.
    /// \param max_missed  Updates that a confirmed track survives without a cluster, at least 0.
    /// \param min_hits  Updates with a cluster that confirm a track, at least 1.
    /// \throws std::invalid_argument  for an argument below its bound or NaN.
    explicit ClusterTracker(float max_distance = kDefaultMaxDistance,
                            float max_size_change = kDefaultMaxSizeChange,
                            int max_missed = kDefaultMaxMissed, int min_hits = kDefaultMinHits);

    /// Takes the clusters of the next window, in about n log n time for n tracks and clusters that lie
    /// apart. A track or cluster that is left over is compared with all others: n^2 at worst.
    ///
    /// \param clusters  What a `generateClusters` reported, all with its timestamp, which must not be
    ///     lower than before. None means that no track was seen; predictions then stay where they
    ///     are. Clusters without area, or whose centre or area is not finite, belong to no track.
    /// \returns for each cluster the id of its track, 0 for none.
    /// \throws std::invalid_argument  for a timestamp lower than before; nothing changes.
    std::vector<int> update(const std::vector<ClusterGeometry>& clusters);

    /// Lists the tracks after the last update, tentative ones included.
    /// \returns copies of them, by ascending id.
    std::vector<Track> getTracks() const;

    /// Ends all tracks. Ids are not used again.
    void reset();

private:
    /// Where a track was matched.
    struct Sighting {
        std::uint64_t timestamp;
        float x, y, width, height;  ///< Centre and size, pixels.
    };

    struct Target {
        Track track;
        std::vector<Sighting> sightings;  ///< The last ones, oldest first.
        int hidden = 0;                   ///< Updates since the last sighting.
    };

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
