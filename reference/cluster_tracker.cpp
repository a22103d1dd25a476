// SPDX-License-Identifier: MIT
#include "reference/cluster_tracker.hpp"

#include <algorithm>
#include <utility>

namespace kelvora::reference {

namespace {

using Object = ClusterTracker::Object;
using Sighting = ClusterTracker::Sighting;

std::vector<Sighting> lastTen(const Object& object) {
    const auto count =
        std::min<std::ptrdiff_t>(10, static_cast<std::ptrdiff_t>(object.sightings.size()));
    return {object.sightings.end() - count, object.sightings.end()};
}

double usual(const Object& object, double Sighting::*size) {
    std::vector<double> sizes;
    for (const Sighting& sighting : lastTen(object)) {
        sizes.push_back(sighting.*size);
    }
    std::sort(sizes.begin(), sizes.end());
    return sizes[sizes.size() / 2];
}

template <class Box>
double areaOf(const Box& box) {
    return static_cast<double>(box.width) * static_cast<double>(box.height);
}

template <class A, class B>
double commonArea(const A& a, const B& b) {
    const auto common = [](double a_low, double a_size, double b_low, double b_size) {
        const double low = std::max(a_low, b_low);
        return std::max(0.0, std::min(a_low + a_size, b_low + b_size) - low);
    };
    return common(a.x, a.width, b.x, b.width) * common(a.y, a.height, b.y, b.height);
}

template <class Part, class Whole>
bool isHalfIn(const Part& part, const Whole& whole) {
    return commonArea(part, whole) >= 0.5 * areaOf(part);
}

}  // namespace

std::vector<int> ClusterTracker::update(const std::vector<ClusterGeometry>& clusters) {
    now = clusters.empty() ? now : static_cast<double>(clusters.front().timestamp) * 1e-6;
    std::vector<int> ids(clusters.size(), 0);
    for (Object& object : objects) {
        predict(object);
    }
    takeNearestClusters(clusters, ids);
    takeOverlappingClusters(clusters, ids);
    for (Object& object : objects) {
        if (object.cluster < 0) {
            miss(object, clusters);
        }
    }
    beginObjects(clusters, ids);
    objects.erase(std::remove_if(objects.begin(), objects.end(),
                                 [this](const Object& object) {
                                     return object.is_confirmed ? object.missed > max_missed
                                                                : object.missed > 0;
                                 }),
                  objects.end());
    return ids;
}

double ClusterTracker::velocity(const Object& object, double Sighting::*axis) {
    const auto recent = lastTen(object);
    const auto count = static_cast<double>(recent.size());
    double mean_time = 0;
    double mean_position = 0;
    for (const Sighting& sighting : recent) {
        mean_time += sighting.seconds / count;
        mean_position += sighting.*axis / count;
    }
    double products = 0;
    double squares = 0;
    for (const Sighting& sighting : recent) {
        const double time = sighting.seconds - mean_time;
        products += time * (sighting.*axis - mean_position);
        squares += time * time;
    }
    const bool all_at_once = recent.front().seconds == recent.back().seconds;
    return all_at_once ? 0 : products / squares;
}

void ClusterTracker::predict(Object& object) const {
    const Sighting& last = object.sightings.back();
    object.width = usual(object, &Sighting::width);
    object.height = usual(object, &Sighting::height);
    const double elapsed = now - last.seconds;
    object.x = last.x + velocity(object, &Sighting::x) * elapsed - object.width / 2;
    object.y = last.y + velocity(object, &Sighting::y) * elapsed - object.height / 2;
    object.cluster = -1;
    object.is_hidden = false;
}

void ClusterTracker::see(Object& object, const ClusterGeometry& cluster, std::size_t index,
                         std::vector<int>& ids) const {
    object.x = cluster.x;
    object.y = cluster.y;
    object.width = cluster.width;
    object.height = cluster.height;
    const auto centre = cluster.getCenter();
    object.sightings.push_back({now, centre.x, centre.y, cluster.width, cluster.height});
    object.cluster = static_cast<int>(index);
    object.missed = 0;
    object.updates_hidden = 0;
    object.is_confirmed = ++object.hits >= min_hits;
    ids[index] = object.id;
}

void ClusterTracker::takeNearestClusters(const std::vector<ClusterGeometry>& clusters,
                                         std::vector<int>& ids) {
    std::vector<ClusterGeometry> predicted;
    for (const Object& object : objects) {
        predicted.emplace_back(static_cast<float>(object.x), static_cast<float>(object.y),
                               static_cast<float>(object.width), static_cast<float>(object.height),
                               0ULL);
    }
    for (const MatchedPair& pair : matcher.match(predicted, clusters, 0)) {
        const auto index = static_cast<std::size_t>(pair.second);
        see(objects[static_cast<std::size_t>(pair.first)], clusters[index], index, ids);
    }
}

void ClusterTracker::takeOverlappingClusters(const std::vector<ClusterGeometry>& clusters,
                                             std::vector<int>& ids) {
    for (Object& object : objects) {
        if (!object.is_confirmed || object.cluster >= 0) {
            continue;
        }
        std::vector<std::pair<double, std::size_t>> wanted;
        for (std::size_t i = 0; i < clusters.size(); ++i) {
            const double common = commonArea(object, clusters[i]);
            const double overlap = common / (areaOf(object) + areaOf(clusters[i]) - common);
            if (ids[i] == 0 && overlap >= 0.6 && !showsAnother(clusters[i], object)) {
                wanted.emplace_back(overlap, i);
            }
        }
        if (!wanted.empty()) {
            const std::size_t most = std::max_element(wanted.begin(), wanted.end())->second;
            see(object, clusters[most], most, ids);
        }
    }
}

bool ClusterTracker::showsAnother(const ClusterGeometry& cluster, const Object& object) const {
    return std::any_of(objects.begin(), objects.end(), [&](const Object& other) {
        return other.id != object.id && other.is_confirmed && isHalfIn(other, cluster);
    });
}

void ClusterTracker::miss(Object& object, const std::vector<ClusterGeometry>& clusters) {
    const bool is_covered =
        std::any_of(clusters.begin(), clusters.end(),
                    [&](const ClusterGeometry& cluster) { return isHalfIn(object, cluster); });
    object.is_hidden = object.is_confirmed && is_covered && object.updates_hidden < object.hits;
    ++(object.is_hidden ? object.updates_hidden : object.missed);
}

void ClusterTracker::beginObjects(const std::vector<ClusterGeometry>& clusters,
                                  std::vector<int>& ids) {
    std::vector<Object> begun;
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        const bool is_known =
            std::any_of(objects.begin(), objects.end(), [&](const Object& object) {
                return object.is_confirmed &&
                       (isHalfIn(object, clusters[i]) || isHalfIn(clusters[i], object));
            });
        if (ids[i] == 0 && !is_known) {
            begun.emplace_back();
            begun.back().id = next_id++;
            see(begun.back(), clusters[i], i, ids);
        }
    }
    objects.insert(objects.end(), begun.begin(), begun.end());
}

}  // namespace kelvora::reference
