// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_set>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/export.hpp"

namespace kelvora {

/// Associates the clusters of one batch with those of another, for instance of two successive calls
/// of a generator, so that objects can be followed over time.
///
/// Two clusters may belong together if their centres are close enough and their boxes are of similar
/// size. Of all such pairs the closest is accepted first, and each cluster belongs to one pair at
/// most.
///
/// One object serves one caller at a time.
class KELVORA_EXPORT DistanceBasedClusterMatcher {
public:
    /// Called for each accepted pair with its cluster of the first batch, its cluster of the second,
    /// and the tag of the pass.
    using DetectedMatchCallback = std::function<void(ClusterGeometry&, ClusterGeometry&, int)>;

    /// An accepted pair.
    struct PairRecord {
        std::int32_t first_index;   ///< Position of the one cluster in the first batch.
        std::int32_t second_index;  ///< Position of the other in the second.
        std::int32_t match_tag;     ///< As passed to `matchClusters`.
        float squared_distance;     ///< Between the centres before the pass, square pixels.
    };

    /// \param distance_threshold  Largest distance between the centres of a pair, pixels. Only its
    ///     square counts, and so its sign does not.
    /// \param size_threshold  Largest difference between the widths of a pair, and between the
    ///     heights, pixels. If it is negative there are no pairs.
    ///
    /// Neither is checked; with NaN in one of them there are no pairs.
    DistanceBasedClusterMatcher(float distance_threshold, float size_threshold);

    /// Copies the thresholds, the callback and the records of the last pass.
    /// \param other  What to copy; stays as it is.
    DistanceBasedClusterMatcher(const DistanceBasedClusterMatcher& other);
    /// Copies the thresholds, the callback and the records of the last pass.
    /// \param other  What to copy; stays as it is.
    /// \returns this matcher.
    DistanceBasedClusterMatcher& operator=(const DistanceBasedClusterMatcher& other);

    /// Drops the callback and the records.
    ~DistanceBasedClusterMatcher();

    /// Replaces the callback.
    /// \param callback  Is copied; an empty one removes the callback.
    void setDetectedMatchCallback(const DetectedMatchCallback& callback);

    /// Pairs the clusters of `first` with those of `second`, and calls the callback for each pair.
    ///
    /// Candidates are all pairs with centres within the distance threshold, the threshold included.
    /// They are taken by ascending distance between the centres, then by ascending position in
    /// `first`, then in `second`; one is accepted if both clusters are still free and the sizes
    /// match. Distances are computed in `float`. A centre that is not a number has no candidates.
    ///
    /// For n clusters and c candidates the pass takes about n log n + c log c time and c memory, as
    /// long as the centres are within some 10^9 pixels. A threshold as large as the sensor makes
    /// every pair a candidate.
    ///
    /// \param first,second  At most 2^31 - 1 clusters each. They may be the same vector; each
    ///     cluster that matches at all then matches itself. The pass itself changes no cluster.
    /// \param match_tag  Handed to the callback and kept in the records, for the caller's use.
    /// \returns the number of pairs.
    /// \note What the callback throws comes out at once: the records are those of the pairs before.
    /// \note Candidates and their order are settled before the callback is called first; sizes are
    ///     compared when it is the turn of a pair. The callback may change clusters. It must not
    ///     resize the batches, nor use this matcher other than to read the records.
    std::size_t matchClusters(std::vector<ClusterGeometry>& first,
                              std::vector<ClusterGeometry>& second, int match_tag = 0);

    /// Gives the pairs of the last pass.
    /// \returns them in the order in which they were accepted; valid until the next pass.
    const std::vector<PairRecord>& getPairRecords() const;

private:
    KELVORA_NO_EXPORT bool tryClusterAssociation(std::unordered_set<ClusterGeometry*>& used,
                                                 ClusterGeometry& first, ClusterGeometry& second,
                                                 int match_tag);

    float distance_threshold_squared;
    float size_threshold;
    DetectedMatchCallback detected_match_callback;
    std::vector<PairRecord> pair_records;
};

}  // namespace kelvora
