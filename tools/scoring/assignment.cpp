// SPDX-License-Identifier: MIT
#include "scoring/assignment.hpp"

#include <algorithm>

namespace kelvora::scoring {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

/// The same problem with at most as many rows as columns, and no cost negative or infinite.
CostMatrix prepared(const CostMatrix& costs) {
    double lowest = kForbidden;
    double highest = -kForbidden;
    for (std::size_t row = 0; row < costs.rows(); ++row) {
        for (std::size_t column = 0; column < costs.columns(); ++column) {
            const double cost = costs.at(row, column);
            if (cost != kForbidden) {
                lowest = std::min(lowest, cost);
                highest = std::max(highest, cost);
            }
        }
    }
    const bool is_upright = costs.rows() <= costs.columns();
    CostMatrix result(std::min(costs.rows(), costs.columns()),
                      std::max(costs.rows(), costs.columns()));
    // More than all permitted pairs can cost together, so that avoiding a forbidden pair always
    // pays off.
    const double span = highest > lowest ? highest - lowest : 1.0;
    const double forbidden = static_cast<double>(result.rows() + 1) * span;
    for (std::size_t i = 0; i < result.rows(); ++i) {
        for (std::size_t j = 0; j < result.columns(); ++j) {
            const double cost = is_upright ? costs.at(i, j) : costs.at(j, i);
            result.at(i, j) = cost == kForbidden ? forbidden : cost - lowest;
        }
    }
    return result;
}

/// Adds one row after another, each by the cheapest augmenting path: a path that alternates between
/// unmatched and matched pairs and ends at a free column. Flipping the pairs along this path keeps
/// the total cost of the rows so far minimal.
///
/// Each row and column has a potential. No pair costs less than the sum of its two potentials, and
/// matched pairs cost exactly that. Reduced costs are therefore never negative, and Dijkstra's
/// algorithm finds the cheapest path.
class AugmentingPaths {
public:
    /// \param costs_  With at most as many rows as columns, all of them finite.
    explicit AugmentingPaths(const CostMatrix& costs_)
        : costs(costs_),
          root(costs_.columns()),
          row_potential(costs_.rows(), 0.0),
          column_potential(costs_.columns() + 1, 0.0),
          row_of(costs_.columns() + 1, kNone) {}

    /// \returns for each column its row or `kNone`, then one more number.
    const std::vector<std::size_t>& run() {
        for (std::size_t row = 0; row < costs.rows(); ++row) {
            std::size_t column = findFreeColumn(row);
            for (; column != root; column = column_before[column]) {
                row_of[column] = row_of[column_before[column]];
            }
        }
        return row_of;
    }

private:
    std::size_t findFreeColumn(std::size_t start) {
        distance.assign(root, kForbidden);
        column_before.assign(root, root);
        is_reached.assign(root + 1, false);
        row_of[root] = start;  // an extra column holds the row that is not matched yet
        std::size_t column = root;
        while (row_of[column] != kNone) {
            is_reached[column] = true;
            column = nearestColumn(column);
            movePotentials(distance[column]);
        }
        return column;
    }

    /// Extends the search from the row of the column reached last.
    std::size_t nearestColumn(std::size_t from) {
        const std::size_t row = row_of[from];
        std::size_t nearest = kNone;
        for (std::size_t column = 0; column < root; ++column) {
            if (is_reached[column]) {
                continue;
            }
            const double excess =
                costs.at(row, column) - row_potential[row] - column_potential[column];
            if (excess < distance[column]) {
                distance[column] = excess;
                column_before[column] = from;
            }
            if (nearest == kNone || distance[column] < distance[nearest]) {
                nearest = column;
            }
        }
        return nearest;
    }

    /// Adjusts the potentials so that the pair to the nearest column has a reduced cost of 0.
    void movePotentials(double step) {
        for (std::size_t column = 0; column <= root; ++column) {
            if (is_reached[column]) {
                row_potential[row_of[column]] += step;
                column_potential[column] -= step;
            } else if (column < root) {
                distance[column] -= step;
            }
        }
    }

    const CostMatrix& costs;
    std::size_t root;
    std::vector<double> row_potential;
    std::vector<double> column_potential;
    std::vector<std::size_t> row_of;
    std::vector<double> distance;  ///< From the reached columns to each other column.
    std::vector<std::size_t> column_before;
    std::vector<bool> is_reached;
};

}  // namespace

std::vector<std::optional<std::size_t>> assign(const CostMatrix& costs) {
    const CostMatrix problem = prepared(costs);
    AugmentingPaths paths(problem);
    const std::vector<std::size_t>& row_of = paths.run();
    std::vector<std::optional<std::size_t>> column_of(costs.rows());
    for (std::size_t i = 0; i < problem.columns(); ++i) {
        if (row_of[i] == kNone) {
            continue;
        }
        const bool is_upright = costs.rows() <= costs.columns();
        const std::size_t row = is_upright ? row_of[i] : i;
        const std::size_t column = is_upright ? i : row_of[i];
        if (costs.at(row, column) != kForbidden) {
            column_of[row] = column;
        }
    }
    return column_of;
}

}  // namespace kelvora::scoring
