// SPDX-License-Identifier: MIT
#include "reference/kd_tree.hpp"

#include <cmath>
#include <limits>

namespace kelvora::reference {

template <int DIM, typename T>
std::vector<KDPoint<DIM, T>> finitePlaces(const std::vector<KDPoint<DIM, T>>& points) {
    std::vector<KDPoint<DIM, T>> places = points;
    for (auto& place : places) {
        for (T& coordinate : place.coordinates) {
            coordinate = std::isfinite(coordinate) ? coordinate : std::numeric_limits<T>::max();
        }
    }
    return places;
}

template <int DIM, typename T>
KDTree<DIM, T>::KDTree(const std::vector<Point>& points_)
    : adaptor{&points_}, index(DIM, adaptor, nanoflann::KDTreeSingleIndexAdaptorParams(10)) {
    index.buildIndex();
}

template <int DIM, typename T>
std::vector<std::size_t> KDTree<DIM, T>::neighboursOf(std::size_t i, T radius) const {
    Neighbours neighbours;
    radiusSearch(i, radius, neighbours);
    std::vector<std::size_t> indices;
    indices.reserve(neighbours.size());
    for (const auto& neighbour : neighbours) {
        indices.push_back(neighbour.first);
    }
    return indices;
}

template std::vector<KDPoint<2, float>> finitePlaces(const std::vector<KDPoint<2, float>>& points);
template std::vector<KDPoint<2, double>> finitePlaces(
    const std::vector<KDPoint<2, double>>& points);
template std::vector<KDPoint<3, float>> finitePlaces(const std::vector<KDPoint<3, float>>& points);
template std::vector<KDPoint<3, double>> finitePlaces(
    const std::vector<KDPoint<3, double>>& points);

template class KDTree<2, float>;
template class KDTree<2, double>;
template class KDTree<3, float>;
template class KDTree<3, double>;

}  // namespace kelvora::reference
