// SPDX-License-Identifier: MIT
#include "kelvora/distance_based_cluster_matcher.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace kelvora {

namespace {

using Centre = cv::Point_<float>;

struct Candidate {
    float squared_distance;
    std::int32_t first;
    std::int32_t second;
};

bool operator<(const Candidate& a, const Candidate& b) {
    if (a.squared_distance != b.squared_distance) {
        return a.squared_distance < b.squared_distance;
    }
    return std::tie(a.first, a.second) < std::tie(b.first, b.second);
}

std::vector<Centre> centresOf(const std::vector<ClusterGeometry>& clusters) {
    std::vector<Centre> centres;
    centres.reserve(clusters.size());
    for (const ClusterGeometry& cluster : clusters) {
        centres.push_back(cluster.getCenter());
    }
    return centres;
}

bool isFinite(const Centre& centre) {
    return std::isfinite(centre.x) && std::isfinite(centre.y);
}

float squaredDistance(const Centre& a, const Centre& b) {
    const float dx = a.x - b.x;
    const float dy = a.y - b.y;
    return dx * dx + dy * dy;
}

/// The centres of a batch in rows of equal height, each row from left to right.
class RowsOfCentres {
public:
    RowsOfCentres(const std::vector<Centre>& centres, double reach_);

    /// Calls `visit(index, centre)` for all centres within reach of a finite `centre` on both axes,
    /// and for some others.
    template <class Visit>
    void visitAround(const Centre& centre, Visit visit) const;

private:
    struct Entry {
        int row;
        Centre centre;
        std::int32_t index;
    };

    int rowOf(double y) const;

    double reach;
    double row_height;
    std::vector<Entry> entries;
};

// Rows lower than a pixel would save no time, and need larger row numbers.
RowsOfCentres::RowsOfCentres(const std::vector<Centre>& centres, double reach_)
    : reach(reach_), row_height(std::max(reach_, 1.0)) {
    entries.reserve(centres.size());
    for (std::size_t i = 0; i < centres.size(); ++i) {
        // The others are not at a finite distance from any centre.
        if (isFinite(centres[i])) {
            entries.push_back({rowOf(centres[i].y), centres[i], static_cast<std::int32_t>(i)});
        }
    }
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return std::tie(a.row, a.centre.x) < std::tie(b.row, b.centre.x);
    });
}

// All centres far out share the outermost rows. These are slower to search, but still sorted.
int RowsOfCentres::rowOf(double y) const {
    constexpr double kOutermost = 1 << 30;
    return static_cast<int>(std::clamp(std::floor(y / row_height), -kOutermost, kOutermost));
}

// Rounding keeps the order of numbers. A centre that is not left of `centre.x - reach` in exact
// numbers is not left of it after rounding. The same holds for the right end and the rows, so no
// centre is missed.
template <class Visit>
void RowsOfCentres::visitAround(const Centre& centre, Visit visit) const {
    const double left = centre.x - reach;
    const double right = centre.x + reach;
    const int last_row = rowOf(centre.y + reach);
    for (int row = rowOf(centre.y - reach); row <= last_row; ++row) {
        auto entry = std::lower_bound(
            entries.begin(), entries.end(), left, [row](const Entry& candidate, double x) {
                return candidate.row < row || (candidate.row == row && candidate.centre.x < x);
            });
        for (; entry != entries.end() && entry->row == row && entry->centre.x <= right; ++entry) {
            visit(entry->index, entry->centre);
        }
    }
}

/// Finds the pairs of two batches that are near enough.
class CandidateSearch {
public:
    CandidateSearch(const std::vector<ClusterGeometry>& first_,
                    const std::vector<ClusterGeometry>& second_, float limit_)
        : first(centresOf(first_)), second(centresOf(second_)), limit(limit_) {}

    std::vector<Candidate> run();

private:
    void compareAll();
    void compareNeighbours();
    void compare(std::int32_t i, const Centre& a, std::int32_t j, const Centre& b);

    std::vector<Centre> first;
    std::vector<Centre> second;
    float limit;  ///< Of the squared distance.
    std::vector<Candidate> candidates;
};

std::vector<Candidate> CandidateSearch::run() {
    if (std::isinf(limit)) {
        compareAll();
    } else if (!std::isnan(limit)) {
        compareNeighbours();
    }
    std::sort(candidates.begin(), candidates.end());
    return std::move(candidates);
}

void CandidateSearch::compareAll() {
    for (std::size_t i = 0; i < first.size(); ++i) {
        for (std::size_t j = 0; j < second.size(); ++j) {
            compare(static_cast<std::int32_t>(i), first[i], static_cast<std::int32_t>(j),
                    second[j]);
        }
    }
}

// The rounded sum of two squares is not less than either square. So both squares are within the
// limit, and both coordinates differ by at most the square root of the limit, plus the rounding of
// the difference and of its square. This rounding is less than a millionth, or 3e-23 if the square
// is too small for its full precision.
void CandidateSearch::compareNeighbours() {
    const double reach = std::sqrt(double{limit}) * (1 + 1e-6) + 1e-22;
    const RowsOfCentres rows(second, reach);
    for (std::size_t i = 0; i < first.size(); ++i) {
        const Centre& centre = first[i];
        if (isFinite(centre)) {
            rows.visitAround(centre, [&](std::int32_t j, const Centre& other) {
                compare(static_cast<std::int32_t>(i), centre, j, other);
            });
        }
    }
}

void CandidateSearch::compare(std::int32_t i, const Centre& a, std::int32_t j, const Centre& b) {
    const float squared_distance = squaredDistance(a, b);
    if (squared_distance <= limit) {  // Not for NaN.
        candidates.push_back({squared_distance, i, j});
    }
}

}  // namespace

DistanceBasedClusterMatcher::DistanceBasedClusterMatcher(float distance_threshold,
                                                         float size_threshold_)
    : distance_threshold_squared(distance_threshold * distance_threshold),
      size_threshold(size_threshold_) {}

DistanceBasedClusterMatcher::DistanceBasedClusterMatcher(const DistanceBasedClusterMatcher&) =
    default;
DistanceBasedClusterMatcher& DistanceBasedClusterMatcher::operator=(
    const DistanceBasedClusterMatcher& other) {
    DistanceBasedClusterMatcher copy(other);  // before anything changes, as it may fail
    distance_threshold_squared = copy.distance_threshold_squared;
    size_threshold = copy.size_threshold;
    detected_match_callback.swap(copy.detected_match_callback);
    pair_records.swap(copy.pair_records);
    return *this;
}
DistanceBasedClusterMatcher::~DistanceBasedClusterMatcher() = default;

void DistanceBasedClusterMatcher::setDetectedMatchCallback(const DetectedMatchCallback& callback) {
    detected_match_callback = callback;
}

std::size_t DistanceBasedClusterMatcher::matchClusters(std::vector<ClusterGeometry>& first,
                                                       std::vector<ClusterGeometry>& second,
                                                       int match_tag) {
    pair_records.clear();
    const std::vector<Candidate> candidates =
        CandidateSearch(first, second, distance_threshold_squared).run();
    // Now, so that every pair reported to the callback is recorded.
    pair_records.reserve(std::min({candidates.size(), first.size(), second.size()}));
    std::unordered_set<ClusterGeometry*> used;
    for (const Candidate& pair : candidates) {
        if (tryClusterAssociation(used, first[static_cast<std::size_t>(pair.first)],
                                  second[static_cast<std::size_t>(pair.second)], match_tag)) {
            pair_records.push_back({pair.first, pair.second, match_tag, pair.squared_distance});
        }
    }
    return pair_records.size();
}

bool DistanceBasedClusterMatcher::tryClusterAssociation(std::unordered_set<ClusterGeometry*>& used,
                                                        ClusterGeometry& first,
                                                        ClusterGeometry& second, int match_tag) {
    if (used.count(&first) != 0 || used.count(&second) != 0) {
        return false;
    }
    // Written so that NaN does not match.
    if (!(size_threshold >= std::abs(first.width - second.width)) ||
        !(size_threshold >= std::abs(first.height - second.height))) {
        return false;
    }
    used.insert(&first);
    used.insert(&second);
    if (detected_match_callback) {
        detected_match_callback(first, second, match_tag);
    }
    return true;
}

const std::vector<DistanceBasedClusterMatcher::PairRecord>&
DistanceBasedClusterMatcher::getPairRecords() const {
    return pair_records;
}

}  // namespace kelvora
