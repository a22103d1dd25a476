// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <nanoflann.hpp>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora::reference {

/// Points with finite coordinates: the largest number stands in for each one that is not finite.
template <int DIM, typename T>
std::vector<KDPoint<DIM, T>> finitePlaces(const std::vector<KDPoint<DIM, T>>& points);

/// A nanoflann tree, which is built twice: by its constructor, and on request. It gives neighbours in
/// the order in which it is walked.
template <int DIM, typename T>
class KDTree {
public:
    using Point = KDPoint<DIM, T>;
    using Neighbours = std::vector<nanoflann::ResultItem<std::size_t, T>>;

    /// The points must be finite, and outlive the tree.
    explicit KDTree(const std::vector<Point>& points_);

    KDTree(const KDTree&) = delete;
    KDTree& operator=(const KDTree&) = delete;

    const std::vector<Point>& points() const { return *adaptor.points; }

    /// Finds the points that are closer to point `i` than the radius, itself included.
    ///
    /// \returns their number.
    std::size_t radiusSearch(std::size_t i, T radius, Neighbours& neighbours) const {
        neighbours.clear();
        return index.radiusSearch(points()[i].coordinates.data(), radius * radius, neighbours,
                                  nanoflann::SearchParameters(0.0F, false));
    }

    /// The same neighbours without their distances.
    std::vector<std::size_t> neighboursOf(std::size_t i, T radius) const;

    /// Finds the point that is closest to a place. Both results are 0 if no squared distance is
    /// finite.
    void nearest(std::vector<std::size_t>& indices, std::vector<T>& squared_distances,
                 const Point& place) const {
        indices.assign(1, 0);
        squared_distances.assign(1, T{0});
        index.knnSearch(place.coordinates.data(), 1, indices.data(), squared_distances.data());
    }

private:
    struct Adaptor {
        const std::vector<Point>* points;

        std::size_t kdtree_get_point_count() const { return points->size(); }
        T kdtree_get_pt(std::size_t i, std::size_t axis) const {
            return (*points)[i].coordinates[axis];
        }
        template <class Box>
        bool kdtree_get_bbox(Box& /*box*/) const {
            return false;
        }
    };

    Adaptor adaptor;
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<T, Adaptor, T, std::size_t>,
                                        Adaptor, DIM, std::size_t>
        index;
};

extern template class KDTree<2, float>;
extern template class KDTree<2, double>;
extern template class KDTree<3, float>;
extern template class KDTree<3, double>;

}  // namespace kelvora::reference
