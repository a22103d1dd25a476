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

/// Pairs the clusters of two batches, for example of two successive calls of a generator, so that
/// objects can be followed over time.
///
/// Two clusters can form a pair if their centres are close enough and their boxes are of similar
/// size. The closest pair is accepted first, and each cluster belongs to at most one pair.
///
/// \code{.cpp}
/// std::vector<kelvora::ClusterGeometry> before = {{10, 10, 20, 20, 1000}, {90, 10, 20, 20, 1000}};
/// std::vector<kelvora::ClusterGeometry> after = {{92, 11, 21, 20, 2000}, {13, 9, 20, 19, 2000}};
/// kelvora::DistanceBasedClusterMatcher matcher(15.0F, 5.0F);
/// matcher.matchClusters(before, after);
/// for (const auto& pair : matcher.getPairRecords()) {
///     std::cout << pair.first_index << " became " << pair.second_index << '\n';
/// }
/// \endcode
///
/// Only one thread at a time may use an object.
class KELVORA_EXPORT DistanceBasedClusterMatcher {
public:
    /// Called for each accepted pair with its cluster in the first batch, its cluster in the second
    /// batch, and the `match_tag` passed to `matchClusters`.
    using DetectedMatchCallback = std::function<void(ClusterGeometry&, ClusterGeometry&, int)>;

    /// An accepted pair.
    struct PairRecord {
        std::int32_t first_index;   ///< Position in the first batch.
        std::int32_t second_index;  ///< Position in the second batch.
        std::int32_t match_tag;     ///< As passed to `matchClusters`.
        float squared_distance;     ///< Between the centres, before any callback; square pixels.
    };

    /// Neither threshold is checked. If one of them is NaN, there are no pairs.
    ///
    /// \param distance_threshold  Largest distance between the centres of a pair, pixels. Only its
    ///     square is used, so the sign is ignored.
    /// \param size_threshold  Largest difference between the widths of a pair, and between the
    ///     heights, pixels. If it is negative, there are no pairs.
    DistanceBasedClusterMatcher(float distance_threshold, float size_threshold);

    /// Copies the thresholds, the callback and the pairs of the last call.
    /// \param other  The matcher to copy.
    DistanceBasedClusterMatcher(const DistanceBasedClusterMatcher& other);
    /// Copies the thresholds, the callback and the pairs of the last call. If an exception is
    /// thrown, this matcher does not change.
    /// \param other  The matcher to copy.
    /// \returns this matcher.
    DistanceBasedClusterMatcher& operator=(const DistanceBasedClusterMatcher& other);

    /// Destroys the callback and the pairs.
    ~DistanceBasedClusterMatcher();

    /// Replaces the callback. If an exception is thrown, the old callback stays.
    /// \param callback  Copied. An empty function removes the callback.
    void setDetectedMatchCallback(const DetectedMatchCallback& callback);

    /// Pairs clusters of `first` with clusters of `second`, and calls the callback for each pair.
    ///
    /// Candidates are all pairs whose centres are at most the distance threshold apart. They are
    /// considered by ascending distance, then by ascending position in `first`, then in `second`. A
    /// candidate is accepted if both clusters are still free and the sizes match. Distances are
    /// computed in `float`. A cluster whose centre is NaN has no candidates.
    ///
    /// For n clusters and c candidates, a call takes about n log n + c log c time and c memory, as
    /// long as the centres are within about 10^9 pixels. A threshold as large as the sensor makes
    /// every pair a candidate.
    ///
    /// \param first,second  At most 2^31 - 1 clusters each. They may be the same vector; each
    ///     cluster then matches itself, if it matches at all. The matcher changes no cluster.
    /// \param match_tag  Passed to the callback and stored in the pairs, for use by the caller.
    /// \returns the number of pairs.
    /// \note An exception from the callback propagates at once. After any exception, the pairs
    /// accepted before remain, and the matcher can be used again.
    /// \note Candidates and their order are determined before the first call of the callback. The
    /// sizes of a pair are compared later, when the pair is considered. The callback may change
    /// clusters. It must not resize the batches, and may use this matcher only to read the pairs.
    std::size_t matchClusters(std::vector<ClusterGeometry>& first,
                              std::vector<ClusterGeometry>& second, int match_tag = 0);

    /// Returns the pairs of the last `matchClusters`.
    /// \returns pairs in the order in which they were accepted; valid until the next call.
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
