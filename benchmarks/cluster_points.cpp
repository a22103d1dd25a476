// SPDX-License-Identifier: MIT
// Clusters the points on standard input by density, and writes the number of each point's cluster,
// or -1 for noise, one per line. Points come as coordinates in the machine's own binary format,
// point by point, without anything before or between them.
#include <cstddef>
#include <cstdio>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "kelvora/density_clustering.hpp"

namespace {

struct Parameters {
    double eps;
    int min_pts;
    unsigned char jobs;
};

template <int DIM, typename T>
std::vector<kelvora::KDPoint<DIM, T>> readPoints(std::FILE* file) {
    using Point = kelvora::KDPoint<DIM, T>;
    std::vector<Point> points;
    Point point;
    while (std::fread(point.coordinates.data(), sizeof(T), DIM, file) == DIM) {
        points.push_back(point);
    }
    return points;
}

template <int DIM, typename T>
void clusterPoints(const Parameters& parameters) {
    const auto points = readPoints<DIM, T>(stdin);
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
    kelvora::DensityClustering<DIM, T> clustering(parameters.eps, parameters.min_pts);
    clustering.generateClustersMultiThread(points, clusters, boxes, parameters.jobs);
    std::vector<int> labels(points.size(), -1);
    for (std::size_t cluster = 0; cluster < clusters.size(); ++cluster) {
        for (const std::size_t member : clusters[cluster]) {
            labels[member] = static_cast<int>(cluster);
        }
    }
    for (const int label : labels) {
        std::cout << label << '\n';
    }
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        const std::string& type = arguments.at(0);
        const Parameters parameters = {std::stod(arguments.at(1)), std::stoi(arguments.at(2)),
                                       static_cast<unsigned char>(std::stoi(arguments.at(3)))};
        if (type == "2f") {
            clusterPoints<2, float>(parameters);
        } else if (type == "2d") {
            clusterPoints<2, double>(parameters);
        } else if (type == "3f") {
            clusterPoints<3, float>(parameters);
        } else if (type == "3d") {
            clusterPoints<3, double>(parameters);
        } else {
            throw std::invalid_argument("no such type of points: " + type);
        }
    } catch (const std::exception& error) {
        std::cerr << "cluster_points: " << error.what()
                  << "\nUsage: cluster_points 2f|2d|3f|3d EPS MIN_PTS JOBS <POINTS\n";
        return 2;
    }
}
