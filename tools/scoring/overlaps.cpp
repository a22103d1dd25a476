// SPDX-License-Identifier: MIT
#include "scoring/overlaps.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <unordered_map>
#include <utility>

namespace kelvora::scoring {

namespace {

/// Indices of the boxes from left to right.
std::vector<std::size_t> fromLeftToRight(const std::vector<Box>& boxes) {
    std::vector<std::size_t> order(boxes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return boxes[a].x < boxes[b].x; });
    return order;
}

/// Returns a position at or left of the left edge of every box that overlaps enough. Such a box is
/// at most 1 / `min_iou` times as wide. The margin is larger than all rounding.
double leftmostEdge(const Box& box, double min_iou) {
    constexpr double kMargin = 1e-9;
    const double reach = box.width / min_iou;
    return box.x - reach - kMargin * (std::abs(box.x) + reach);
}

/// Disjoint sets of rows.
class Sets {
public:
    explicit Sets(std::size_t count) : parents(count) {
        std::iota(parents.begin(), parents.end(), std::size_t{0});
    }

    /// The smallest row of the set.
    std::size_t find(std::size_t row) {
        while (parents[row] != row) {
            parents[row] = parents[parents[row]];
            row = parents[row];
        }
        return row;
    }

    void join(std::size_t a, std::size_t b) {
        a = find(a);
        b = find(b);
        parents[std::max(a, b)] = std::min(a, b);
    }

private:
    std::vector<std::size_t> parents;
};

}  // namespace

TooManyOverlaps::TooManyOverlaps() : std::runtime_error("too many boxes overlap") {}

std::vector<Overlap> findOverlaps(const std::vector<Box>& rows, const std::vector<Box>& columns,
                                  double min_iou, std::size_t most) {
    const std::vector<std::size_t> order = fromLeftToRight(columns);
    std::vector<Overlap> overlaps;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const Box& box = rows[row];
        const double right = box.x + box.width;
        auto next = std::lower_bound(
            order.begin(), order.end(), leftmostEdge(box, min_iou),
            [&](std::size_t column, double edge) { return columns[column].x < edge; });
        for (; next != order.end() && columns[*next].x <= right; ++next) {
            const double iou = intersectionOverUnion(box, columns[*next]);
            if (iou >= min_iou) {
                if (overlaps.size() == most) {
                    throw TooManyOverlaps();
                }
                overlaps.push_back({row, *next, iou});
            }
        }
    }
    return overlaps;
}

std::vector<std::vector<Overlap>> groupOverlaps(const std::vector<Overlap>& overlaps,
                                                std::size_t row_count) {
    Sets sets(row_count);
    std::unordered_map<std::size_t, std::size_t> first_row_of;
    for (const Overlap& overlap : overlaps) {
        sets.join(first_row_of.emplace(overlap.column, overlap.row).first->second, overlap.row);
    }
    std::vector<std::size_t> group_of(row_count, overlaps.size());
    std::vector<std::vector<Overlap>> groups;
    std::vector<Overlap> by_row = overlaps;
    std::stable_sort(by_row.begin(), by_row.end(),
                     [](const Overlap& a, const Overlap& b) { return a.row < b.row; });
    for (const Overlap& overlap : by_row) {
        std::size_t& group = group_of[sets.find(overlap.row)];
        if (group == overlaps.size()) {
            group = groups.size();
            groups.emplace_back();
        }
        groups[group].push_back(overlap);
    }
    return groups;
}

}  // namespace kelvora::scoring
