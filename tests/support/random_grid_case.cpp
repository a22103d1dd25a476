// SPDX-License-Identifier: MIT
#include "support/random_grid_case.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <sstream>

#include <opencv2/core/mat.hpp>

#include "reference/grid_based_cluster_generator.hpp"
#include "support/event_builders.hpp"
#include "support/feeding.hpp"
#include "support/first_difference.hpp"

namespace kelvora::test {

namespace {

using GridModel = reference::GridBasedClusterGenerator;

bool oneIn(Random& random, int n) {
    return randomInt(random, 1, n) == 1;
}

/// Usually some cells and a remainder; sometimes a single line of pixels, or many cells in a row.
int randomSensorSize(Random& random, int cell_size) {
    if (oneIn(random, 12)) {
        return 1;
    }
    if (oneIn(random, 12)) {
        return cell_size * randomInt(random, 60, 70);
    }
    return cell_size * randomInt(random, 1, 24) + randomInt(random, 0, cell_size - 1);
}

GridSettings randomSettings(Random& random) {
    GridSettings settings;
    settings.cells(randomInt(random, 1, 7), randomInt(random, 1, 7));
    settings.sensor(randomSensorSize(random, settings.cell_width),
                    randomSensorSize(random, settings.cell_height));
    settings.threshold(static_cast<unsigned short>(randomInt(random, 0, randomInt(random, 0, 8))));
    constexpr std::array<EventFilterType, 4> kFilters = {POLARITY_FREE, POSITIVE_FREE,
                                                         NEGATIVE_FREE, POLARITY_SEPARATE};
    settings.filter(kFilters[static_cast<std::size_t>(randomInt(random, 0, 3))]);
    settings.count_pixel_once = oneIn(random, 2);
    if (oneIn(random, 2)) {
        // Whole cells, like clusters, so that clusters often have exactly the allowed size.
        const int smallest = settings.cell_width * randomInt(random, 0, 3);
        const int largest = settings.cell_height * randomInt(random, 2, 7);
        settings.clusterSizes(smallest, largest);
    }
    return settings;
}

template <class Event>
void feedAs(GridBasedClusterGenerator& generator, const std::vector<Event2D>& events,
            Feeding feeding) {
    std::vector<Event> typed_events;
    for (const Event2D& event : events) {
        typed_events.push_back(makeEvent<Event>(event.x, event.y, event.polarity));
    }
    if (feeding == Feeding::kOneByOne) {
        feedOneByOne(generator, typed_events);
    } else {
        Random random(events.size());
        feedInBatches(generator, typed_events, random);
    }
}

/// Each filter has a separate event type here, because the first generator that sees a type sets
/// the filter for it.
void feedByFilter(GridBasedClusterGenerator& generator, EventFilterType filter,
                  const std::vector<Event2D>& events, Feeding feeding) {
    switch (filter) {
        case POSITIVE_FREE:
            return feedAs<Event2DPeriod<int>>(generator, events, feeding);
        case NEGATIVE_FREE:
            return feedAs<Event2DPeriod<float>>(generator, events, feeding);
        default:
            return feedAs<Event2D>(generator, events, feeding);
    }
}

std::optional<std::string> comparePixels(GridBasedClusterGenerator& generator,
                                         const GridModel& model) {
    cv::Mat map;
    generator.getActiveMap(map);
    const auto& expected = model.getPixelCounts();
    const auto [count, expected_count] =
        std::mismatch(map.datastart, map.dataend, expected.begin(), expected.end());
    if (count == map.dataend && expected_count == expected.end()) {
        return std::nullopt;
    }
    std::ostringstream text;
    text << "the count of pixel " << count - map.datastart << " differs";
    return text.str();
}

}  // namespace

GridCase randomGridCase(std::uint64_t seed) {
    Random random(seed);
    GridCase grid_case;
    grid_case.settings = randomSettings(random);
    const auto make_events = [&](int most) {
        return randomEvents(random, grid_case.settings.sensor_width,
                            grid_case.settings.sensor_height,
                            static_cast<std::size_t>(randomInt(random, 0, most)));
    };
    grid_case.batches.resize(static_cast<std::size_t>(randomInt(random, 1, 4)));
    for (GridCase::Batch& batch : grid_case.batches) {
        batch.reset = oneIn(random, 3);
        if (batch.reset) {
            batch.before_reset = make_events(60);
        }
        batch.events = make_events(oneIn(random, 2) ? 50 : 400);
    }
    return grid_case;
}

std::optional<std::string> compareWithModel(const GridCase& grid_case, const GridSettings& settings,
                                            Feeding feeding) {
    auto generator = settings.build();
    auto model = grid_case.settings.build<GridModel>();
    std::vector<ClusterGeometry> expected;
    std::size_t timestamp = 1000;
    for (const GridCase::Batch& batch : grid_case.batches) {
        if (batch.reset) {
            feedByFilter(generator, settings.filter_type, batch.before_reset, feeding);
            feedOneByOne(model, batch.before_reset);
            generator.reset();
            model.reset();
        }
        feedByFilter(generator, settings.filter_type, batch.events, feeding);
        feedOneByOne(model, batch.events);
        auto difference = comparePixels(generator, model);
        if (!difference) {
            model.generateClusters(timestamp, expected);
            difference = firstDifference(generate(generator, timestamp), expected);
        }
        if (difference) {
            return difference;
        }
        ++timestamp;
    }
    return std::nullopt;
}

}  // namespace kelvora::test
