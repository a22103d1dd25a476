// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <nanoflann.hpp>
#include <vector>

#include "kelvora/export.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// An index over a vector of points that finds the neighbours within a radius, or the nearest k.
///
/// The tree does not copy the points: the vector passed to `build` must exist, unchanged, as long
/// as the tree is searched.
///
/// \code{.cpp}
/// const std::vector<kelvora::KDPoint<2, float>> points = {0, 1, 2, 10};  // each on the diagonal
/// kelvora::KDTree<2, float> tree;
/// tree.build(points, 1);
/// std::vector<std::size_t> indices;
/// std::vector<float> squared_distances;
/// tree.knnSearchPoint(2, indices, squared_distances, 8.0F);
/// std::cout << "nearest: " << indices[0] << ", then " << indices[1] << '\n';  // 3, then 2
/// \endcode
///
/// After `build`, any number of threads may search at the same time. No other call
/// may run during `build`.
///
/// Points with a coordinate that is not finite have no neighbours, and are not found. Internally
/// the largest number replaces such coordinates, so only a query at the largest
/// number could find one.
///
/// \tparam DIM  2 or 3.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class KDTree {
public:
    /// The type of the points.
    using Point = KDPoint<DIM, T>;

    /// Constructs an empty index.
    KDTree();
    /// Destroys the index, but not the points.
    ~KDTree();

    /// \cond no copies
    KDTree(const KDTree&) = delete;
    KDTree& operator=(const KDTree&) = delete;
    /// \endcond

    /// Indexes `points` in about n log n time, and replaces the previous index.
    ///
    /// \param points  Must exist, unchanged, as long as the tree is searched.
    /// \param n_thread_build  Threads to build with; 0 means one per hardware thread.
    /// \returns true.
    /// \throws std::bad_alloc  if there is not enough memory.
    /// \throws std::system_error  if a thread cannot be started.
    /// \note After an exception, the index is empty, like before the first `build`.
    bool build(const std::vector<Point>& points, int n_thread_build);

    /// Finds all points closer than `radius` to the point with number `index`, itself included.
    ///
    /// Takes about log n + m time to find m of n points, and m log m more to sort them.
    ///
    /// \param radius  In the unit of the coordinates. Points at exactly this
    ///     distance are not found.
    /// \param results  Emptied first. Receives pairs of point number and squared distance.
    /// \param sorted  Sort by ascending distance. Otherwise results are in the order in which the
    ///     tree is walked.
    /// \param index  Number of an indexed point; not checked.
    /// \returns the number of results; 0 before the first `build`.
    std::size_t radiusSearchIndex(T radius,
                                  std::vector<nanoflann::ResultItem<std::size_t, T>>& results,
                                  bool sorted, std::size_t index) const;

    /// Finds the `k` points closest to `query`, in about k log n time.
    ///
    /// \param k  Number of points to find.
    /// \param indices,dists  Resized to `k`. Receive the numbers and squared distances of the
    ///     points found, by ascending distance, then zeros.
    /// \param query  Any point; it need not be indexed.
    /// \returns the number of points found: fewer than `k` if there are not enough at a finite
    ///     squared distance, and 0 before the first `build`.
    std::size_t knnSearchPoint(std::size_t k, std::vector<std::size_t>& indices,
                               std::vector<T>& dists, const Point& query) const;

    /// Returns an indexed point. Must not be called before the first `build`.
    /// \param i  Number of the point in the vector passed to `build`; not checked.
    /// \returns a reference into the caller's vector.
    const Point& getPoint(std::size_t i) const;

    /// Returns the number of indexed points. Must not be called before the first `build`.
    /// \returns the number of points.
    std::size_t getPointsCount() const;

private:
    // NOLINTNEXTLINE(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp): a fixed name.
    class KELVORA_NO_EXPORT __KDPointAdaptor;
    class KELVORA_NO_EXPORT Index;

    std::vector<Point> points;  ///< Always empty, but part of the layout.
    bool built = false;
    std::unique_ptr<Index> index;
    std::unique_ptr<__KDPointAdaptor> adaptor;
};

extern template class KELVORA_EXPORT KDTree<2, float>;
extern template class KELVORA_EXPORT KDTree<2, double>;
extern template class KELVORA_EXPORT KDTree<3, float>;
extern template class KELVORA_EXPORT KDTree<3, double>;

}  // namespace kelvora
