// SPDX-License-Identifier: MIT
// Clusters the points on standard input, and writes the number of each point's cluster, or -1 for
// noise, one per line. Around centroids, a line for each cluster comes first: its centroid, then
// its number of points. Points come as coordinates in the machine's own binary format, point by
// point, without anything before or between them.
#include <cstddef>
#include <cstdio>
#include <exception>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "kelvora/centroid_clustering.hpp"
#include "kelvora/density_clustering.hpp"

namespace {

struct DensityParameters {
    double eps;
    int min_pts;
    unsigned char jobs;
};

struct CentroidParameters {
    std::size_t k;
    std::size_t max_iter;
    double tol;
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

void writeLabels(const std::vector<std::vector<std::size_t>>& clusters, std::size_t points) {
    std::vector<int> labels(points, -1);
    for (std::size_t cluster = 0; cluster < clusters.size(); ++cluster) {
        for (const std::size_t member : clusters[cluster]) {
            labels[member] = static_cast<int>(cluster);
        }
    }
    for (const int label : labels) {
        std::cout << label << '\n';
    }
}

template <int DIM, typename T>
void clusterPoints(const DensityParameters& parameters) {
    const auto points = readPoints<DIM, T>(stdin);
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
    kelvora::DensityClustering<DIM, T> clustering(parameters.eps, parameters.min_pts);
    clustering.generateClustersMultiThread(points, clusters, boxes, parameters.jobs);
    writeLabels(clusters, points.size());
}

template <int DIM, typename T>
void writeCentroids(const kelvora::CentroidClustering<DIM, T>& clustering) {
    std::vector<kelvora::KDPoint<DIM, T>> centroids;
    std::vector<std::size_t> sizes;
    clustering.getCentroids(centroids);
    clustering.getNumPointsPerCluster(sizes);
    std::cout.precision(std::numeric_limits<T>::max_digits10);
    for (std::size_t cluster = 0; cluster < centroids.size(); ++cluster) {
        for (const T coordinate : centroids[cluster].coordinates) {
            std::cout << coordinate << ' ';
        }
        std::cout << sizes[cluster] << '\n';
    }
}

template <int DIM, typename T>
void clusterPoints(const CentroidParameters& parameters) {
    const auto points = readPoints<DIM, T>(stdin);
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
    kelvora::CentroidClustering<DIM, T> clustering(parameters.k, parameters.max_iter,
                                                   parameters.tol);
    clustering.generateClusters(points, clusters, boxes);
    writeCentroids(clustering);
    writeLabels(clusters, points.size());
}

template <class Parameters>
void clusterPointsOfType(const std::string& type, const Parameters& parameters) {
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
}

void runMethod(const std::vector<std::string>& arguments) {
    const std::string& method = arguments.at(0);
    const std::string& type = arguments.at(1);
    if (method == "density") {
        clusterPointsOfType(
            type, DensityParameters{std::stod(arguments.at(2)), std::stoi(arguments.at(3)),
                                    static_cast<unsigned char>(std::stoi(arguments.at(4)))});
    } else if (method == "centroid") {
        clusterPointsOfType(
            type, CentroidParameters{std::stoul(arguments.at(2)), std::stoul(arguments.at(3)),
                                     std::stod(arguments.at(4))});
    } else {
        throw std::invalid_argument("no such method: " + method);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        runMethod({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::cerr << "cluster_points: " << error.what()
                  << "\nUsage: cluster_points density 2f|2d|3f|3d EPS MIN_PTS JOBS <POINTS"
                     "\n       cluster_points centroid 2f|2d|3f|3d K MAX_ITER TOL <POINTS\n";
        return 2;
    }
}
