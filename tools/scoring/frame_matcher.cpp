// SPDX-License-Identifier: MIT
#include "scoring/frame_matcher.hpp"

#include "scoring/assignment.hpp"

namespace kelvora::scoring {

FrameMatcher::FrameMatcher(const Frame& frame_, double min_iou_)
    : frame(frame_),
      min_iou(min_iou_),
      is_matched(frame_.truth.size(), false),
      is_taken(frame_.clusters.size(), false) {}

void FrameMatcher::matchWithTrack(std::size_t object, std::uint64_t track) {
    for (std::size_t cluster = 0; cluster < frame.clusters.size(); ++cluster) {
        if (frame.clusters[cluster].track == track && !is_taken[cluster] &&
            iou(object, cluster) >= min_iou) {
            match(object, cluster);
            return;
        }
    }
}

void FrameMatcher::matchAll(const std::vector<std::size_t>& objects) {
    std::vector<std::size_t> rows;
    for (const std::size_t object : objects) {
        if (!is_matched[object]) {
            rows.push_back(object);
        }
    }
    std::vector<std::size_t> columns;
    for (std::size_t cluster = 0; cluster < is_taken.size(); ++cluster) {
        if (!is_taken[cluster]) {
            columns.push_back(cluster);
        }
    }
    CostMatrix costs(rows.size(), columns.size());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        for (std::size_t column = 0; column < columns.size(); ++column) {
            const double overlap = iou(rows[row], columns[column]);
            if (overlap >= min_iou) {
                costs.at(row, column) = 1.0 - overlap;
            }
        }
    }
    const auto column_of = assign(costs);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        if (column_of[row]) {
            match(rows[row], columns[*column_of[row]]);
        }
    }
}

double FrameMatcher::iou(std::size_t object, std::size_t cluster) const {
    return intersectionOverUnion(frame.truth[object].box, frame.clusters[cluster].box);
}

void FrameMatcher::match(std::size_t object, std::size_t cluster) {
    is_matched[object] = true;
    is_taken[cluster] = true;
    made.push_back({object, cluster, iou(object, cluster)});
}

}  // namespace kelvora::scoring
