// SPDX-License-Identifier: MIT
// The neighbours of a point: within a radius, and the nearest few.
#include <cstddef>
#include <iostream>
#include <kelvora/kd_tree.hpp>
#include <vector>

using Point = kelvora::KDPoint<2, float>;

// The crossings of a grid of ten by ten lines. Point number 55 lies at (5, 5).
std::vector<Point> crossings() {
    std::vector<Point> points(100);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const std::size_t column = i % 10, row = i / 10;
        points[i].coordinates = {static_cast<float>(column), static_cast<float>(row)};
    }
    return points;
}

int main() {
    const std::vector<Point> points = crossings();  // must outlive all searches
    kelvora::KDTree<2, float> tree;
    tree.build(points, 1);

    // The search does not find points at exactly the radius, but finds the point itself. Distances
    // are squared.
    std::vector<nanoflann::ResultItem<std::size_t, float>> neighbours;
    const std::size_t within = tree.radiusSearchIndex(1.5F, neighbours, true, 55);
    std::cout << within << " points closer than 1.5, the furthest at a squared distance of "
              << neighbours.back().second << '\n';

    Point query;
    query.coordinates = {2.2F, 7.1F};
    std::vector<std::size_t> nearest;
    std::vector<float> squared_distances;
    tree.knnSearchPoint(3, nearest, squared_distances, query);
    for (const std::size_t i : nearest) {
        std::cout << "near (2.2, 7.1): (" << points[i].coordinates[0] << ", "
                  << points[i].coordinates[1] << ")\n";
    }
    return within == 9 && nearest == std::vector<std::size_t>{72, 73, 82} ? 0 : 1;
}
