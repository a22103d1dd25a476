// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>
#include <vector>

#include "kelvora/events.hpp"
#include "support/event_builders.hpp"
#include "support/points.hpp"

/// \file
/// Labels of events, from the library and from an independent model.

namespace kelvora::test {

/// The label of each event of the last call.
template <class Generator>
std::vector<int> labelsOf(Generator& generator) {
    std::vector<int> labels = {7, 7, 7};
    generator.getClusterLabels(labels);
    return labels;
}

/// Events of both polarities, and a few of other ones, all at different positions.
inline std::vector<Event2D> eventsAtDifferentPlaces(Random& random, std::size_t count, int width) {
    std::vector<Event2D> events = randomEvents(random, width, width, count);
    for (std::size_t i = 0; i < count; ++i) {
        const auto place = static_cast<std::size_t>(randomInt(random, 0, 3)) * count + i;
        events[i].x = static_cast<unsigned short>(place % static_cast<std::size_t>(width));
        events[i].y = static_cast<unsigned short>(place / static_cast<std::size_t>(width));
    }
    std::shuffle(events.begin(), events.end(), random);
    return events;
}

/// The events that the filter does not ignore.
inline std::vector<Event2D> takenEvents(std::vector<Event2D> events, EventFilterType filter) {
    const int ignored = filter == POSITIVE_FREE ? 1 : filter == NEGATIVE_FREE ? 0 : 2;
    events.erase(std::remove_if(events.begin(), events.end(),
                                [ignored](const Event2D& event) {
                                    return static_cast<int>(event.polarity) == ignored;
                                }),
                 events.end());
    return events;
}

/// Looks for the position of each event among the positions of the clusters' points. Exact if all
/// events have different positions.
template <class Kind, class Generator>
std::vector<int> labelsByPosition(Generator& generator, const std::vector<Event2D>& events) {
    std::vector<typename Kind::Points> clusters;
    generator.getClusterPoints(clusters, true);
    std::map<std::pair<int, int>, int> cluster_at;
    for (std::size_t cluster = 0; cluster < clusters.size(); ++cluster) {
        for (const auto& point : clusters[cluster]) {
            cluster_at[{static_cast<int>(point.coordinates[0]),
                        static_cast<int>(point.coordinates[1])}] = static_cast<int>(cluster);
        }
    }
    std::vector<int> labels;
    for (const Event2D& event : events) {
        const auto found = cluster_at.find({event.x, event.y});
        labels.push_back(found == cluster_at.end() ? -1 : found->second);
    }
    return labels;
}

}  // namespace kelvora::test
