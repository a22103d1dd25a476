// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace kelvora::scoring {

/// Cost of a pair that must not be made.
inline constexpr double kForbidden = std::numeric_limits<double>::infinity();

/// The cost of each pair of a row and a column: any finite number, or `kForbidden`.
class CostMatrix {
public:
    /// All pairs are forbidden at first.
    CostMatrix(std::size_t rows_, std::size_t columns_)
        : row_count(rows_), column_count(columns_), costs(rows_ * columns_, kForbidden) {}

    std::size_t rows() const { return row_count; }
    std::size_t columns() const { return column_count; }
    double& at(std::size_t row, std::size_t column) { return costs[row * column_count + column]; }
    double at(std::size_t row, std::size_t column) const {
        return costs[row * column_count + column];
    }

private:
    std::size_t row_count;
    std::size_t column_count;
    std::vector<double> costs;
};

/// Pairs rows with columns, each at most once: as many pairs as possible without a forbidden one,
/// at the least total cost. If several assignments are optimal, the choice is deterministic.
///
/// The Hungarian method with shortest augmenting paths: R. Jonker, A. Volgenant: "A shortest
/// augmenting path algorithm for dense and sparse linear assignment problems", 1987. O(n^2 m) for n
/// rows and m columns or the reverse, whichever has n <= m.
///
/// \returns for each row its column, if it has one.
std::vector<std::optional<std::size_t>> assign(const CostMatrix& costs);

}  // namespace kelvora::scoring
