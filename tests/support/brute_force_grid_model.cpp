// SPDX-License-Identifier: MIT
#include "support/brute_force_grid_model.hpp"

#include <algorithm>
#include <array>
#include <sstream>
#include <tuple>

namespace kelvora::test {

namespace {

std::array<Cell, 4> neighboursOf(const Cell& cell) {
    const auto [row, col] = cell;
    return {Cell{row - 1, col}, Cell{row + 1, col}, Cell{row, col - 1}, Cell{row, col + 1}};
}

bool relaxLabels(std::map<Cell, Cell>& labels) {
    bool changed = false;
    for (auto& [cell, label] : labels) {
        for (const Cell& neighbour : neighboursOf(cell)) {
            const auto found = labels.find(neighbour);
            if (found != labels.end() && found->second < label) {
                label = found->second;
                changed = true;
            }
        }
    }
    return changed;
}

auto fieldsOf(const ClusterGeometry& cluster) {
    return std::tie(cluster.x, cluster.y, cluster.z, cluster.width, cluster.height, cluster.depth,
                    cluster.start_time, cluster.duration, cluster.timestamp);
}

std::string describe(const ClusterGeometry& cluster) {
    std::ostringstream text;
    std::apply([&text](const auto&... field) { ((text << field << ' '), ...); }, fieldsOf(cluster));
    return text.str();
}

}  // namespace

std::vector<std::set<Cell>> connectedComponents(const std::set<Cell>& cells) {
    std::map<Cell, Cell> labels;
    for (const Cell& cell : cells) {
        labels[cell] = cell;
    }
    while (relaxLabels(labels)) {
    }
    // The smallest cell of a component is its first in reading order, and labels are sorted.
    std::map<Cell, std::set<Cell>> by_label;
    for (const auto& [cell, label] : labels) {
        by_label[label].insert(cell);
    }
    std::vector<std::set<Cell>> components;
    components.reserve(by_label.size());
    for (const auto& [label, component] : by_label) {
        components.push_back(component);
    }
    return components;
}

bool BruteForceGridModel::isIgnored(int polarity) const {
    switch (settings.filter_type) {
        case POSITIVE_FREE:
            return polarity == 1;
        case NEGATIVE_FREE:
            return polarity == 0;
        default:
            return polarity == 2;
    }
}

bool BruteForceGridModel::isActive(const Tally& tally) const {
    const unsigned needed = settings.activation_threshold;
    constexpr unsigned kCounterValues = 65536;
    if (settings.filter_type == POLARITY_SEPARATE) {
        return tally.negative % kCounterValues >= needed &&
               tally.positive % kCounterValues >= needed;
    }
    return (tally.negative + tally.positive) % kCounterValues >= needed;
}

void BruteForceGridModel::mark(const Cell& cell) {
    for (const Cell& offset : {Cell{0, 0}, Cell{0, 1}, Cell{1, 0}, Cell{1, 1}}) {
        const int row = cell.first + offset.first;
        const int col = cell.second + offset.second;
        const bool on_sensor = row * settings.cell_height < settings.sensor_height &&
                               col * settings.cell_width < settings.sensor_width;
        if (on_sensor) {
            marked.insert({row, col});
        }
    }
}

void BruteForceGridModel::processEvent(const Event2D& event) {
    if (isIgnored(event.polarity)) {
        return;
    }
    int& pixel = pixel_counts[{event.x, event.y}];
    if (settings.count_pixel_once && pixel > 0) {
        return;
    }
    pixel = std::min(pixel + 1, 255);
    const Cell cell = {event.y / settings.cell_height, event.x / settings.cell_width};
    Tally& tally = tallies[cell];
    ++(event.polarity == 0 ? tally.negative : tally.positive);
    if (isActive(tally)) {
        mark(cell);
    }
}

void BruteForceGridModel::reset() {
    pixel_counts.clear();
    tallies.clear();
}

std::vector<ClusterGeometry> BruteForceGridModel::generateClusters(std::size_t timestamp) {
    std::vector<ClusterGeometry> clusters;
    for (const std::set<Cell>& component : connectedComponents(marked)) {
        if (const auto cluster = clusterAround(component, timestamp)) {
            clusters.push_back(*cluster);
        }
    }
    marked.clear();
    reset();
    return clusters;
}

std::optional<ClusterGeometry> BruteForceGridModel::clusterAround(const std::set<Cell>& component,
                                                                  std::size_t timestamp) const {
    std::set<int> rows;
    std::set<int> cols;
    for (const auto& [row, col] : component) {
        rows.insert(row);
        cols.insert(col);
    }
    const int left = *cols.begin() * settings.cell_width;
    const int right = (*cols.rbegin() + 1) * settings.cell_width;
    const int top = *rows.begin() * settings.cell_height;
    const int bottom = (*rows.rbegin() + 1) * settings.cell_height;
    for (const int size : {right - left, bottom - top}) {
        if (size < settings.min_cluster_size || size > settings.max_cluster_size) {
            return std::nullopt;
        }
    }
    return ClusterGeometry(static_cast<float>(left), static_cast<float>(top), 0,
                           static_cast<float>(std::min(right, settings.sensor_width) - left),
                           static_cast<float>(std::min(bottom, settings.sensor_height) - top), 0,
                           -1, 0, timestamp);
}

std::optional<std::string> firstDifference(const std::vector<ClusterGeometry>& actual,
                                           const std::vector<ClusterGeometry>& expected) {
    std::ostringstream text;
    for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
        if (fieldsOf(actual[i]) != fieldsOf(expected[i])) {
            text << "cluster " << i << " is " << describe(actual[i]) << "instead of "
                 << describe(expected[i]);
            return text.str();
        }
    }
    if (actual.size() != expected.size()) {
        text << actual.size() << " clusters instead of " << expected.size();
        return text.str();
    }
    return std::nullopt;
}

}  // namespace kelvora::test
