// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <stdexcept>
#include <vector>

#include "scoring/box.hpp"

namespace kelvora::scoring {

/// Two boxes that overlap, as indices into two lists.
struct Overlap {
    std::size_t row;
    std::size_t column;
    double iou;  ///< Intersection over union.
};

/// Thrown if there are more pairs of boxes than the caller allows.
class TooManyOverlaps : public std::runtime_error {
public:
    TooManyOverlaps();
};

/// Finds the pairs of a row and a column that overlap by `min_iou` or more, above 0. Compares only
/// boxes that are close on the x axis.
///
/// \returns pairs in any order.
/// \throws TooManyOverlaps  if there are more than `most`.
std::vector<Overlap> findOverlaps(const std::vector<Box>& rows, const std::vector<Box>& columns,
                                  double min_iou, std::size_t most);

/// Groups pairs so that two pairs with a common box are in the same group.
///
/// \param row_count  Number of rows; larger than each row of a pair.
/// \returns groups in the order of their first rows.
std::vector<std::vector<Overlap>> groupOverlaps(const std::vector<Overlap>& overlaps,
                                                std::size_t row_count);

}  // namespace kelvora::scoring
