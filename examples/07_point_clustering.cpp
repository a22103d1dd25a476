// SPDX-License-Identifier: MIT
// DBSCAN and k-means on any points, not only events.
#include <cmath>
#include <cstddef>
#include <iostream>
#include <kelvora/centroid_clustering.hpp>
#include <kelvora/density_clustering.hpp>
#include <vector>

using Point = kelvora::KDPoint<2, double>;
using Clusters = std::vector<std::vector<std::size_t>>;  // numbers of points
using Boxes = std::vector<std::vector<double>>;  // smallest x and y, extent along x and along y

// A ring of radius 10 around a small ring of radius 1, and a stray point.
std::vector<Point> ringsAndStray() {
    std::vector<Point> points;
    for (int i = 0; i < 200; ++i) {
        const double angle = 0.01 * M_PI * i, radius = i % 2 == 0 ? 10 : 1;
        points.emplace_back().coordinates = {radius * std::cos(angle), radius * std::sin(angle)};
    }
    points.emplace_back().coordinates = {40, 40};
    return points;
}

int main() {
    const std::vector<Point> points = ringsAndStray();
    Clusters clusters;
    Boxes boxes;

    // Follows shapes and leaves noise out: two rings. Points at exactly the radius are not
    // neighbours.
    kelvora::DensityClustering<2, double> dbscan(2.0, 4);
    dbscan.generateClustersMultiThread(points, clusters, boxes, 1);
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        std::cout << "DBSCAN: " << clusters[i].size() << " points, " << boxes[i][2] << " wide\n";
    }
    const bool rings_found = clusters.size() == 2 && clusters[0].size() == 100;

    // Divides all points among a given number of centroids, including the stray point.
    kelvora::CentroidClustering<2, double> kmeans(2, 100, 1e-6);
    kmeans.generateClusters(points, clusters, boxes);
    std::vector<Point> centroids;
    kmeans.getCentroids(centroids);
    for (std::size_t i = 0; i < clusters.size(); ++i) {
        std::cout << "k-means: " << clusters[i].size() << " points around ("
                  << centroids[i].coordinates[0] << ", " << centroids[i].coordinates[1] << ")\n";
    }
    return rings_found && clusters[0].size() + clusters[1].size() == points.size() ? 0 : 1;
}
