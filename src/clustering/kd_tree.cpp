// SPDX-License-Identifier: MIT
#include "kelvora/kd_tree.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kelvora {

namespace {

constexpr std::size_t kLeafMaxSize = 10;

template <int DIM, typename T>
bool isFinite(const KDPoint<DIM, T>& point) {
    return std::all_of(point.coordinates.begin(), point.coordinates.end(),
                       [](T value) { return std::isfinite(value); });
}

}  // namespace

/// Presents the caller's points to nanoflann.
template <int DIM, typename T>
// NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): a fixed name.
class KDTree<DIM, T>::__KDPointAdaptor {
public:
    explicit __KDPointAdaptor(const std::vector<Point>& points_) : points(&points_) {}

    const std::vector<Point>& indexed() const { return *points; }

    std::size_t kdtree_get_point_count() const { return points->size(); }

    /// NaN and infinities would make nanoflann split endlessly. The largest number replaces them:
    /// it puts such points so far away that squared distances overflow, and they are not neighbours
    /// of any point.
    T kdtree_get_pt(std::size_t i, std::size_t axis) const {
        const T value = (*points)[i].coordinates[axis];
        return std::isfinite(value) ? value : std::numeric_limits<T>::max();
    }

    template <class Box>
    bool kdtree_get_bbox(Box& /*box*/) const {
        return false;
    }

private:
    const std::vector<Point>* points;
};

template <int DIM, typename T>
class KDTree<DIM, T>::Index : public nanoflann::KDTreeSingleIndexAdaptor<
                                  nanoflann::L2_Simple_Adaptor<T, __KDPointAdaptor, T, std::size_t>,
                                  __KDPointAdaptor, DIM, std::size_t> {
public:
    using Index::KDTreeSingleIndexAdaptor::KDTreeSingleIndexAdaptor;
};

template <int DIM, typename T>
KDTree<DIM, T>::KDTree() = default;

template <int DIM, typename T>
KDTree<DIM, T>::~KDTree() = default;

template <int DIM, typename T>
bool KDTree<DIM, T>::build(const std::vector<Point>& points_, int n_thread_build) {
    // The old index refers to the old adaptor. It must not be searched if building
    // the new ones fails.
    built = false;
    adaptor.reset();
    points.clear();
    adaptor = std::make_unique<__KDPointAdaptor>(points_);
    index.reset();
    const nanoflann::KDTreeSingleIndexAdaptorParams params(
        kLeafMaxSize, nanoflann::KDTreeSingleIndexAdaptorFlags::None,
        static_cast<unsigned int>(n_thread_build));
    index = std::make_unique<Index>(DIM, *adaptor, params);
    index->buildIndex();
    built = true;
    return true;
}

template <int DIM, typename T>
std::size_t KDTree<DIM, T>::radiusSearchIndex(
    T radius, std::vector<nanoflann::ResultItem<std::size_t, T>>& results, bool sorted,
    std::size_t i) const {
    results.clear();
    if (!built || index == nullptr || getPointsCount() == 0) {
        return 0;
    }
    const Point& query = adaptor->indexed()[i];
    if (!isFinite(query)) {
        return 0;
    }
    const nanoflann::SearchParameters parameters(0.0F, sorted);
    return index->radiusSearch(query.coordinates.data(), radius * radius, results, parameters);
}

template <int DIM, typename T>
std::size_t KDTree<DIM, T>::knnSearchPoint(std::size_t k, std::vector<std::size_t>& indices,
                                           std::vector<T>& dists, const Point& query) const {
    indices.assign(k, 0);
    dists.assign(k, T{0});
    if (!built || index == nullptr || getPointsCount() == 0 || k == 0) {
        return 0;
    }
    return index->knnSearch(query.coordinates.data(), k, indices.data(), dists.data());
}

template <int DIM, typename T>
const KDPoint<DIM, T>& KDTree<DIM, T>::getPoint(std::size_t i) const {
    return adaptor->indexed()[i];
}

template <int DIM, typename T>
std::size_t KDTree<DIM, T>::getPointsCount() const {
    return adaptor->kdtree_get_point_count();
}

template class KDTree<2, float>;
template class KDTree<2, double>;
template class KDTree<3, float>;
template class KDTree<3, double>;

}  // namespace kelvora
