// SPDX-License-Identifier: MIT
#include "kelvora/cluster_tracker.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <stdexcept>
#include <utility>

namespace kelvora {

namespace {

// Enough to smooth the jitter of boxes, and few enough to follow an object that turns.
constexpr std::size_t kMostSightings = 10;

// If two boxes share at least this part of the smaller one, they count as the same object.
constexpr float kLargeShare = 0.5F;

// With at least this intersection over union, a cluster of any size belongs to a track.
constexpr float kSameBox = 0.6F;

int requireAtLeast(int lowest, int value, const char* message) {
    if (value < lowest) {
        throw std::invalid_argument(message);
    }
    return value;
}

float requireNotNegative(float value, const char* message) {
    if (!(value >= 0.0F)) {
        throw std::invalid_argument(message);
    }
    return value;
}

/// Whether a box can be tracked: its centre and area are finite, and it is not empty. Generators
/// report clusters without area at the origin.
bool isVisible(const ClusterGeometry& cluster) {
    const cv::Point_<float> centre = cluster.getCenter();
    return std::isfinite(centre.x) && std::isfinite(centre.y) && std::isfinite(cluster.getArea()) &&
           cluster.width > 0.0F && cluster.height > 0.0F && cluster.getArea() > 0.0F;
}

float commonArea(const ClusterGeometry& a, const ClusterGeometry& b) {
    return (a.get2DBoundingBox() & b.get2DBoundingBox()).area();
}

float intersectionOverUnion(const ClusterGeometry& a, const ClusterGeometry& b) {
    const float common = commonArea(a, b);
    return common / (a.getArea() + b.getArea() - common);
}

bool liesLargelyWithin(const ClusterGeometry& part, const ClusterGeometry& whole) {
    return commonArea(part, whole) >= kLargeShare * part.getArea();
}

/// Returns the median of a size of all sightings, at least one.
template <class Sightings, class SizeOf>
float medianOf(const Sightings& sightings, SizeOf sizeOf) {
    std::array<float, kMostSightings> sizes;
    const auto end = std::transform(sightings.begin(), sightings.end(), sizes.begin(), sizeOf);
    const auto middle = sizes.begin() + (end - sizes.begin()) / 2;
    std::nth_element(sizes.begin(), middle, end);
    return *middle;
}

/// A straight line of positions over times in seconds, by least squares.
class Line {
public:
    void add(double time, double position) {
        ++count;
        times += time;
        positions += position;
        squared_times += time * time;
        products += time * position;
    }

    /// 0 if all times are the same.
    double slope() const {
        const double spread = count * squared_times - times * times;
        return spread > 0.0 ? (count * products - times * positions) / spread : 0.0;
    }

private:
    int count = 0;
    double times = 0.0;
    double positions = 0.0;
    double squared_times = 0.0;
    double products = 0.0;
};

double secondsBetween(std::uint64_t begin, std::uint64_t end) {
    return static_cast<double>(end - begin) * 1e-6;
}

}  // namespace

ClusterTracker::ClusterTracker(float max_distance, float max_size_change, int max_missed_,
                               int min_hits_)
    : matcher(requireNotNegative(max_distance, "ClusterTracker: max_distance must not be negative"),
              requireNotNegative(max_size_change,
                                 "ClusterTracker: max_size_change must not be negative")),
      max_missed(requireAtLeast(0, max_missed_, "ClusterTracker: max_missed must not be negative")),
      min_hits(requireAtLeast(1, min_hits_, "ClusterTracker: min_hits must be at least 1")) {}

std::vector<int> ClusterTracker::update(const std::vector<ClusterGeometry>& clusters) {
    if (!clusters.empty() && clusters.front().timestamp < last_timestamp) {
        throw std::invalid_argument("ClusterTracker: timestamps must not decrease");
    }
    // A failure changes only the copy.
    ClusterTracker next = *this;
    std::vector<int> ids = next.advance(clusters);
    targets.swap(next.targets);
    last_timestamp = next.last_timestamp;
    next_id = next.next_id;
    return ids;
}

/// Updates the tracks. If this fails, they are invalid.
std::vector<int> ClusterTracker::advance(const std::vector<ClusterGeometry>& clusters) {
    if (!clusters.empty()) {
        last_timestamp = clusters.front().timestamp;
    }
    predictTargets();
    matchTargets(clusters);
    matchByOverlap(clusters);
    missTargets(clusters);
    beginTargets(clusters);
    endTargets();
    return idsOfClusters(clusters.size());
}

std::vector<ClusterTracker::Track> ClusterTracker::getTracks() const {
    std::vector<Track> tracks;
    tracks.reserve(targets.size());
    for (const Target& target : targets) {
        tracks.push_back(target.track);
    }
    return tracks;
}

void ClusterTracker::reset() {
    targets.clear();
    last_timestamp = 0;
}

/// Moves the boxes of all tracks along their lines, starting at the last sighting.
void ClusterTracker::predictTargets() {
    for (Target& target : targets) {
        Track& track = target.track;
        const Sighting& last = target.sightings.back();
        const double elapsed = secondsBetween(last.timestamp, last_timestamp);
        const auto x = static_cast<float>(last.x + track.vx * elapsed);
        const auto y = static_cast<float>(last.y + track.vy * elapsed);
        const auto& sightings = target.sightings;
        const float width = medianOf(sightings, [](const Sighting& one) { return one.width; });
        const float height = medianOf(sightings, [](const Sighting& one) { return one.height; });
        track.box = {x - width / 2, y - height / 2, width, height, last_timestamp};
        track.cluster = -1;
        track.is_hidden = false;
    }
}

/// Associates the predicted boxes with the clusters.
void ClusterTracker::matchTargets(std::vector<ClusterGeometry> clusters) {
    std::vector<ClusterGeometry> predictions;
    for (const Target& target : targets) {
        predictions.push_back(target.track.box);
    }
    for (ClusterGeometry& cluster : clusters) {
        if (!isVisible(cluster)) {
            cluster.x = std::numeric_limits<float>::quiet_NaN();  // matches nothing
        }
    }
    matcher.matchClusters(predictions, clusters);
    for (const auto& pair : matcher.getPairRecords()) {
        const auto index = static_cast<std::size_t>(pair.second_index);
        sight(targets[static_cast<std::size_t>(pair.first_index)], clusters[index], index);
    }
}

/// Gives each confirmed track without a cluster one at about the same position, but of another
/// size: the visible part of an object grows and shrinks at the edge of the view. The required
/// overlap is so large that two tracks match the same cluster only if their objects have merged.
void ClusterTracker::matchByOverlap(const std::vector<ClusterGeometry>& clusters) {
    const std::vector<int> ids = idsOfClusters(clusters.size());
    for (Target& target : targets) {
        if (target.track.cluster >= 0 || target.track.state != State::Confirmed) {
            continue;
        }
        const ClusterGeometry predicted = target.track.box;
        float largest = kSameBox;
        for (std::size_t i = 0; i < clusters.size(); ++i) {
            const float overlap = intersectionOverUnion(predicted, clusters[i]);
            if (ids[i] == 0 && overlap >= largest && !hidesAnother(clusters[i], target)) {
                largest = overlap;
                target.track.cluster = static_cast<int>(i);
            }
        }
        if (target.track.cluster >= 0) {
            const auto index = static_cast<std::size_t>(target.track.cluster);
            sight(target, clusters[index], index);
        }
    }
}

/// Whether a confirmed track other than `target` lies largely within a cluster.
bool ClusterTracker::hidesAnother(const ClusterGeometry& cluster, const Target& target) const {
    return std::any_of(targets.begin(), targets.end(), [&](const Target& other) {
        return &other != &target && other.track.state == State::Confirmed &&
               liesLargelyWithin(other.track.box, cluster);
    });
}

void ClusterTracker::sight(Target& target, const ClusterGeometry& cluster,
                           std::size_t index) const {
    const cv::Point_<float> centre = cluster.getCenter();
    if (target.sightings.size() == kMostSightings) {
        target.sightings.erase(target.sightings.begin());
    }
    target.sightings.push_back({last_timestamp, centre.x, centre.y, cluster.width, cluster.height});
    Line x;
    Line y;
    for (const Sighting& sighting : target.sightings) {
        const double time = secondsBetween(target.sightings.front().timestamp, sighting.timestamp);
        x.add(time, sighting.x);
        y.add(time, sighting.y);
    }
    Track& track = target.track;
    track.vx = static_cast<float>(x.slope());
    track.vy = static_cast<float>(y.slope());
    track.box = cluster;
    track.cluster = static_cast<int>(index);
    track.missed = 0;
    target.hidden = 0;
    if (++track.hits >= min_hits) {
        track.state = State::Confirmed;
    }
}

/// Decides which tracks without a cluster are hidden. An object that was seen only briefly is
/// hidden only briefly: it may have been a part of the object that seems to hide it.
void ClusterTracker::missTargets(const std::vector<ClusterGeometry>& clusters) {
    for (Target& target : targets) {
        Track& track = target.track;
        if (track.cluster >= 0) {
            continue;
        }
        track.is_hidden =
            track.state == State::Confirmed && target.hidden < track.hits &&
            std::any_of(clusters.begin(), clusters.end(), [&](const ClusterGeometry& cluster) {
                return isVisible(cluster) && liesLargelyWithin(track.box, cluster);
            });
        if (track.is_hidden) {
            ++target.hidden;
        } else {
            ++track.missed;
        }
    }
}

/// Begins a track for each cluster that shows something new.
void ClusterTracker::beginTargets(const std::vector<ClusterGeometry>& clusters) {
    const std::vector<int> ids = idsOfClusters(clusters.size());
    std::vector<Target> begun;
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        if (ids[i] == 0 && isVisible(clusters[i]) && !showsConfirmed(clusters[i])) {
            Target target{};
            target.track.id = next_id++;
            sight(target, clusters[i], i);
            begun.push_back(std::move(target));
        }
    }
    std::move(begun.begin(), begun.end(), std::back_inserter(targets));
}

/// Whether a cluster lies largely within the box of a confirmed track, or contains one.
bool ClusterTracker::showsConfirmed(const ClusterGeometry& cluster) const {
    return std::any_of(targets.begin(), targets.end(), [&](const Target& target) {
        return target.track.state == State::Confirmed &&
               (liesLargelyWithin(cluster, target.track.box) ||
                liesLargelyWithin(target.track.box, cluster));
    });
}

void ClusterTracker::endTargets() {
    const auto has_ended = [this](const Target& target) {
        return target.track.missed > (target.track.state == State::Confirmed ? max_missed : 0);
    };
    targets.erase(std::remove_if(targets.begin(), targets.end(), has_ended), targets.end());
}

std::vector<int> ClusterTracker::idsOfClusters(std::size_t cluster_count) const {
    std::vector<int> ids(cluster_count, 0);
    for (const Target& target : targets) {
        if (target.track.cluster >= 0) {
            ids[static_cast<std::size_t>(target.track.cluster)] = target.track.id;
        }
    }
    return ids;
}

}  // namespace kelvora
