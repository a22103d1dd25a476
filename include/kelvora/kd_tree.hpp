// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <nanoflann.hpp>
#include <vector>

#include "kelvora/export.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// An index over a vector of points that finds neighbours by radius or by number.
///
/// The points stay where they are: the vector given to `build` must live, unchanged, as long as the
/// tree is searched. After `build`, any number of threads may search at the same time; `build` must
/// run alone.
///
/// Points with a coordinate that is not finite have no neighbours, and are not found. (Inside they
/// stand at the largest number: only a point that is there itself could be mistaken for one.)
///
/// \tparam DIM  2 or 3.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class KDTree {
public:
    /// What is indexed.
    using Point = KDPoint<DIM, T>;

    /// An index over nothing.
    KDTree();
    /// Leaves the points alone.
    ~KDTree();

    /// \cond no copies
    KDTree(const KDTree&) = delete;
    KDTree& operator=(const KDTree&) = delete;
    /// \endcond

    /// Indexes `points` in about n log n time; an index built before is dropped.
    ///
    /// \param points  Must live, unchanged, as long as the tree is searched.
    /// \param n_thread_build  Threads to build with; 0 stands for one per hardware thread.
    /// \returns true.
    /// \throws std::bad_alloc  if memory is not to be had.
    /// \throws std::system_error  if threads are not to be had.
    bool build(const std::vector<Point>& points, int n_thread_build);

    /// Finds all points that are closer to point number `index` than `radius`, that point included.
    ///
    /// Takes about log n + m time for n points, m of them found, and m log m more to sort.
    ///
    /// \param radius  In the unit of the coordinates. Points at exactly this distance are not
    ///     found.
    /// \param results  Emptied first; then pairs of point number and squared distance.
    /// \param sorted  By ascending distance; otherwise in the order in which the tree is walked.
    /// \param index  Number of an indexed point; not checked.
    /// \returns the number of results; 0 before the first `build`.
    std::size_t radiusSearchIndex(T radius,
                                  std::vector<nanoflann::ResultItem<std::size_t, T>>& results,
                                  bool sorted, std::size_t index) const;

    /// Finds the `k` points closest to `query`, in about k log n time.
    ///
    /// \param k  Most points to find.
    /// \param indices,dists  Emptied, then of length `k`: point numbers and squared distances by
    ///     ascending distance, as many as the returned number, followed by zeros.
    /// \param query  Any point; it need not be indexed.
    /// \returns the number of points found: `k`, or fewer if there are not so many at a finite
    ///     squared distance; 0 before the first `build`.
    std::size_t knnSearchPoint(std::size_t k, std::vector<std::size_t>& indices,
                               std::vector<T>& dists, const Point& query) const;

    /// Reads an indexed point. Not before the first `build`.
    /// \param i  Number of the point in the vector that was given to `build`; not checked.
    /// \returns that very point, in the caller's vector.
    const Point& getPoint(std::size_t i) const;

    /// Counts the indexed points. Not before the first `build`.
    /// \returns their number.
    std::size_t getPointsCount() const;

private:
    // NOLINTNEXTLINE(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp): an established name.
    class KELVORA_NO_EXPORT __KDPointAdaptor;
    class KELVORA_NO_EXPORT Index;

    std::vector<Point> points;  ///< Always empty; the tree reads the caller's vector.
    bool built = false;
    std::unique_ptr<Index> index;
    std::unique_ptr<__KDPointAdaptor> adaptor;
};

extern template class KELVORA_EXPORT KDTree<2, float>;
extern template class KELVORA_EXPORT KDTree<2, double>;
extern template class KELVORA_EXPORT KDTree<3, float>;
extern template class KELVORA_EXPORT KDTree<3, double>;

}  // namespace kelvora
