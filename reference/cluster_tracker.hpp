// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "reference/distance_based_cluster_matcher.hpp"

namespace kelvora::reference {

/// The rules of `kelvora::ClusterTracker` one by one, with every cluster that an object was ever seen
/// as, and from the centres of clusters on in double precision. For clusters that have an area.
class ClusterTracker {
public:
    struct Sighting {
        double seconds, x, y, width, height;
    };

    struct Object {
        int id = 0;
        int hits = 0;
        int missed = 0;
        int updates_hidden = 0;  ///< Since the last sighting.
        int cluster = -1;
        bool is_confirmed = false;
        bool is_hidden = false;
        double x = 0, y = 0, width = 0, height = 0;  ///< Of the box, its corner first.
        std::vector<Sighting> sightings;
    };

    ClusterTracker(float max_distance, float max_size_change, int max_missed_, int min_hits_)
        : matcher{max_distance, max_size_change}, max_missed(max_missed_), min_hits(min_hits_) {}

    std::vector<int> update(const std::vector<ClusterGeometry>& clusters);

    const std::vector<Object>& getObjects() const { return objects; }

    /// The slope of the line through the last ten positions on an axis, with times and positions
    /// taken from their means.
    static double velocity(const Object& object, double Sighting::*axis);

private:
    void predict(Object& object) const;
    void see(Object& object, const ClusterGeometry& cluster, std::size_t index,
             std::vector<int>& ids) const;
    void takeNearestClusters(const std::vector<ClusterGeometry>& clusters, std::vector<int>& ids);
    void takeOverlappingClusters(const std::vector<ClusterGeometry>& clusters,
                                 std::vector<int>& ids);
    bool showsAnother(const ClusterGeometry& cluster, const Object& object) const;
    static void miss(Object& object, const std::vector<ClusterGeometry>& clusters);
    void beginObjects(const std::vector<ClusterGeometry>& clusters, std::vector<int>& ids);

    DistanceBasedClusterMatcher matcher;
    int max_missed;
    int min_hits;
    int next_id = 1;
    double now = 0;
    std::vector<Object> objects;
};

}  // namespace kelvora::reference
