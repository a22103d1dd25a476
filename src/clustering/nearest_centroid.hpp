// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <type_traits>
#include <utility>
#include <vector>

#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Finds the centroid nearest to each point of a set.
///
/// The box around the points is halved repeatedly, always across its longest side. Each part keeps
/// the centroids that are nearest to any position in the part, mostly one to three. A point is
/// compared only with these. Parts inherit candidates from the larger part around them, and parts
/// with few points are not halved further, so that the lists cost almost nothing. An iteration
/// takes 10 to 30 % of the time of a search tree.
///
/// Squared distances are equal to the tree's to the last bit. If several centroids are equally
/// near, the tree must be searched, because the order of its walk decides. The tree is also
/// searched if a part keeps very many centroids. This happens if a single point far from all others
/// makes the parts too large; an iteration then takes about as long as with the tree alone.
template <int DIM, typename T>
class NearestCentroid {
public:
    using Point = KDPoint<DIM, T>;

    struct Result {
        std::size_t index;
        T squared_distance;
        bool is_tied;  ///< The tree must be searched; the other fields are not valid.
    };

    /// If any point is not finite, or so far away that squared distances might overflow, all
    /// results are tied, and the tree does all the work.
    ///
    /// \param k  Number of centroids.
    NearestCentroid(const std::vector<Point>& points, std::size_t k);

    void setCentroids(const std::vector<Point>& centroids_);

    /// \param i  Index of the point.
    Result find(const Point& point, std::size_t i) const;

private:
    /// A part of the box around the points.
    struct Part {
        std::array<double, DIM> low;  ///< Relative to the corner of the box.
        std::array<double, DIM> side;
        std::size_t first_cell;
        std::size_t cell_count;
    };

    /// Consecutive candidates; empty if there are too many to compare.
    struct List {
        std::uint32_t begin;
        std::uint32_t end;
    };

    bool measure(const std::vector<Point>& points);
    void chooseHalvings(std::size_t cell_count);
    void locate(const std::vector<Point>& points);
    void split(std::size_t halving, const Part& part, std::size_t begin);
    void keepNearest(const Part& part, std::size_t begin, std::size_t end);
    std::array<double, DIM> nearestToCentre(const Part& part, std::size_t begin,
                                            std::size_t end) const;
    std::array<double, DIM> offsetFromCentre(const Part& part, const Point& centroid) const;

    // Coordinates are relative to this corner, to keep them exact if the box is
    // far from the origin.
    std::array<double, DIM> corner;
    Part whole;
    std::vector<std::size_t> halvings;  ///< Axis of each.
    std::vector<std::uint32_t> cell_of_point;
    std::vector<std::uint32_t>
        points_before;  ///< Points in all cells before each cell, and before the end.
    const Point* centroids = nullptr;
    std::vector<std::uint32_t>
        inherited;  ///< Lists of the current part and of the parts around it.
    std::vector<std::uint32_t> candidates;  ///< Lists of all cells.
    std::vector<List> list_of_cell;
};

template <int DIM, typename T>
NearestCentroid<DIM, T>::NearestCentroid(const std::vector<Point>& points, std::size_t k) {
    constexpr std::size_t kCellsPerCentroid = 64;
    constexpr std::size_t kMostCells = 16384;
    if (measure(points)) {
        chooseHalvings(std::min({kCellsPerCentroid * k, points.size() / 16, kMostCells}));
        locate(points);
    }
}

/// Finds the box around the points. Returns whether the points can be sorted into cells.
template <int DIM, typename T>
bool NearestCentroid<DIM, T>::measure(const std::vector<Point>& points) {
    // The squares of such numbers, and sums of many of them, are finite.
    constexpr T kFarthest = std::is_same_v<T, float> ? static_cast<T>(1e15) : static_cast<T>(1e100);
    std::array<T, DIM> lowest = points.front().coordinates;
    std::array<T, DIM> highest = lowest;
    bool are_near = true;
    for (const Point& point : points) {
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const T value = point.coordinates[axis];
            are_near &= std::abs(value) <= kFarthest;
            lowest[axis] = std::min(lowest[axis], value);
            highest[axis] = std::max(highest[axis], value);
        }
    }
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        corner[axis] = static_cast<double>(lowest[axis]);
        whole.low[axis] = 0.0;
        whole.side[axis] = static_cast<double>(highest[axis]) - corner[axis];
    }
    return are_near;
}

template <int DIM, typename T>
void NearestCentroid<DIM, T>::chooseHalvings(std::size_t cell_count) {
    std::array<double, DIM> side = whole.side;
    whole.first_cell = 0;
    whole.cell_count = 1;
    while (whole.cell_count < cell_count) {
        const auto longest =
            static_cast<std::size_t>(std::max_element(side.begin(), side.end()) - side.begin());
        side[longest] /= 2;
        halvings.push_back(longest);
        whole.cell_count *= 2;
    }
    list_of_cell.resize(whole.cell_count);
}

/// Finds the cell of each point. Each halving is one bit of the cell number, the first halving the
/// highest bit.
template <int DIM, typename T>
void NearestCentroid<DIM, T>::locate(const std::vector<Point>& points) {
    std::array<std::vector<std::uint32_t>, DIM> digits;  // of each slice along an axis
    std::array<double, DIM> slices_per_unit;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        digits[axis] = {0};
        for (const std::size_t halved : halvings) {
            const std::vector<std::uint32_t> larger = std::move(digits[axis]);
            digits[axis].clear();
            for (const std::uint32_t number : larger) {
                digits[axis].push_back(2 * number);
                if (halved == axis) {
                    digits[axis].push_back(2 * number + 1);
                }
            }
        }
        const auto slices = static_cast<double>(digits[axis].size());
        // Kept finite: for a very short side the quotient is infinite, and times 0 would be NaN.
        slices_per_unit[axis] =
            whole.side[axis] > 0.0
                ? std::min(slices / whole.side[axis], std::numeric_limits<double>::max())
                : 0.0;
    }
    cell_of_point.resize(points.size());
    points_before.assign(whole.cell_count + 1, 0);
    for (std::size_t i = 0; i < points.size(); ++i) {
        std::uint32_t cell = 0;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const double offset = static_cast<double>(points[i].coordinates[axis]) - corner[axis];
            const auto slice = static_cast<std::size_t>(offset * slices_per_unit[axis]);
            cell += digits[axis][std::min(slice, digits[axis].size() - 1)];
        }
        cell_of_point[i] = cell;
        ++points_before[cell + 1];
    }
    std::partial_sum(points_before.begin(), points_before.end(), points_before.begin());
}

template <int DIM, typename T>
void NearestCentroid<DIM, T>::setCentroids(const std::vector<Point>& centroids_) {
    if (cell_of_point.empty()) {
        return;
    }
    centroids = centroids_.data();
    inherited.resize(centroids_.size());
    for (std::size_t i = 0; i < inherited.size(); ++i) {
        inherited[i] = static_cast<std::uint32_t>(i);
    }
    candidates.clear();
    split(0, whole, 0);
}

/// Finds the candidates of all cells in a part of the box. The part inherits the candidates from
/// `begin` on.
template <int DIM, typename T>
void NearestCentroid<DIM, T>::split(std::size_t halving, const Part& part, std::size_t begin) {
    // For so few points, shorter lists do not save time.
    constexpr std::size_t kFewPoints = 32;
    // With more candidates, searching the tree is faster.
    constexpr std::size_t kMostCandidates = 64;
    const std::size_t end = inherited.size();
    const std::size_t point_count =
        points_before[part.first_cell + part.cell_count] - points_before[part.first_cell];
    if (point_count <= kFewPoints || part.cell_count == 1 || end - begin == 1) {
        const auto first = static_cast<std::uint32_t>(candidates.size());
        if (end - begin <= kMostCandidates) {
            candidates.insert(candidates.end(),
                              inherited.begin() + static_cast<std::ptrdiff_t>(begin),
                              inherited.end());
        }
        std::fill_n(list_of_cell.begin() + static_cast<std::ptrdiff_t>(part.first_cell),
                    part.cell_count, List{first, static_cast<std::uint32_t>(candidates.size())});
        return;
    }
    Part half = part;
    half.side[halvings[halving]] /= 2;
    half.cell_count /= 2;
    for (int i = 0; i < 2; ++i) {
        keepNearest(half, begin, end);
        split(halving + 1, half, end);
        inherited.resize(end);
        half.low[halvings[halving]] += half.side[halvings[halving]];
        half.first_cell += half.cell_count;
    }
}

/// Appends the inherited centroids from `begin` to `end` that may be nearest somewhere in a part:
/// all that the centroid nearest to its centre does not beat everywhere.
///
/// The difference of the squared distances to two centroids is linear in the position, and largest
/// in a corner (D. Pelleg, A. Moore: "Accelerating Exact k-means Algorithms with Geometric
/// Reasoning", KDD 1999).
template <int DIM, typename T>
void NearestCentroid<DIM, T>::keepNearest(const Part& part, std::size_t begin, std::size_t end) {
    // Much larger than the rounding errors of distances and cells.
    constexpr double kMargin = 1e-4;
    constexpr auto kLeast = static_cast<double>(std::numeric_limits<T>::min());
    const auto winner = nearestToCentre(part, begin, end);
    for (std::size_t i = begin; i < end; ++i) {
        const auto rival = offsetFromCentre(part, centroids[inherited[i]]);
        double lead = kLeast;  // of the rival, in its best corner
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const double reach = part.side[axis] / 2 * (1.0 + kMargin);
            const double squares = winner[axis] * winner[axis] + rival[axis] * rival[axis];
            lead += winner[axis] * winner[axis] - rival[axis] * rival[axis] +
                    2 * reach * std::abs(rival[axis] - winner[axis]) +
                    kMargin * (squares + reach * reach);
        }
        if (lead >= 0.0) {
            inherited.push_back(inherited[i]);
        }
    }
}

/// Finds the inherited centroid nearest to a part's centre. Returns its offset from the centre.
template <int DIM, typename T>
std::array<double, DIM> NearestCentroid<DIM, T>::nearestToCentre(const Part& part,
                                                                 std::size_t begin,
                                                                 std::size_t end) const {
    std::array<double, DIM> nearest{};
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = begin; i < end; ++i) {
        const auto offset = offsetFromCentre(part, centroids[inherited[i]]);
        double squared_distance = 0.0;
        for (const double along_axis : offset) {
            squared_distance += along_axis * along_axis;
        }
        if (squared_distance < least) {
            least = squared_distance;
            nearest = offset;
        }
    }
    return nearest;
}

template <int DIM, typename T>
std::array<double, DIM> NearestCentroid<DIM, T>::offsetFromCentre(const Part& part,
                                                                  const Point& centroid) const {
    std::array<double, DIM> offset;
    for (std::size_t axis = 0; axis < DIM; ++axis) {
        offset[axis] = static_cast<double>(centroid.coordinates[axis]) - corner[axis] -
                       (part.low[axis] + part.side[axis] / 2);
    }
    return offset;
}

template <int DIM, typename T>
typename NearestCentroid<DIM, T>::Result NearestCentroid<DIM, T>::find(const Point& point,
                                                                       std::size_t i) const {
    if (cell_of_point.empty()) {
        return {0, 0, true};
    }
    const List list = list_of_cell[cell_of_point[i]];
    Result result{0, std::numeric_limits<T>::infinity(), list.begin == list.end};
    for (std::uint32_t c = list.begin; c < list.end; ++c) {
        const Point& centroid = centroids[candidates[c]];
        T squared_distance = 0;
        for (std::size_t axis = 0; axis < DIM; ++axis) {
            const T difference = point.coordinates[axis] - centroid.coordinates[axis];
            squared_distance += difference * difference;
        }
        // No branches: the nearest centroid is hard to predict.
        const bool is_nearer = squared_distance < result.squared_distance;
        result.is_tied =
            !is_nearer && (result.is_tied || squared_distance == result.squared_distance);
        result.index = is_nearer ? candidates[c] : result.index;
        result.squared_distance = is_nearer ? squared_distance : result.squared_distance;
    }
    return result;
}

}  // namespace kelvora
