// SPDX-License-Identifier: MIT
// Clusters the points on standard input, by the library or a peer, and writes the number of each
// point's cluster, or -1 for noise, one per line. Around centroids, a line for each cluster comes
// first: its centroid, then its number of points. Points come as coordinates in the machine's own
// binary format, point by point, without anything before or between them. Standard error gets the
// seconds of each run, by the clock on the wall and of the processor, one line per run.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <exception>
#include <iostream>
#include <limits>
#include <numeric>
#include <opencv2/core.hpp>
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

struct OpenCvParameters {
    std::size_t k;
    std::size_t first_iterations;
    int max_iter;
    int jobs;
};

/// Ends k-means when nothing changes any more.
constexpr double kSmallest = std::numeric_limits<double>::min();

/// Runs the clustering again and again, so that the last times are measured with a warm cache.
template <class Run>
void timeRuns(int runs, const Run& run) {
    for (int i = 0; i < runs; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const std::clock_t processor_start = std::clock();
        run();
        const std::clock_t ticks = std::clock() - processor_start;
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
        std::cerr << seconds.count() << ' ' << static_cast<double>(ticks) / CLOCKS_PER_SEC << '\n';
    }
}

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

std::vector<int> labelsOf(const std::vector<std::vector<std::size_t>>& clusters,
                          std::size_t points) {
    std::vector<int> labels(points, -1);
    for (std::size_t cluster = 0; cluster < clusters.size(); ++cluster) {
        for (const std::size_t member : clusters[cluster]) {
            labels[member] = static_cast<int>(cluster);
        }
    }
    return labels;
}

void writeLabels(const std::vector<int>& labels) {
    for (const int label : labels) {
        std::cout << label << '\n';
    }
}

template <int DIM, typename T>
void clusterPoints(const DensityParameters& parameters, int runs) {
    const auto points = readPoints<DIM, T>(stdin);
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
    kelvora::DensityClustering<DIM, T> clustering(parameters.eps, parameters.min_pts);
    timeRuns(runs, [&] {
        clustering.generateClustersMultiThread(points, clusters, boxes, parameters.jobs);
    });
    writeLabels(labelsOf(clusters, points.size()));
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
void clusterPoints(const CentroidParameters& parameters, int runs) {
    const auto points = readPoints<DIM, T>(stdin);
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
    kelvora::CentroidClustering<DIM, T> clustering(parameters.k, parameters.max_iter,
                                                   parameters.tol);
    timeRuns(runs, [&] { clustering.generateClusters(points, clusters, boxes); });
    writeCentroids(clustering);
    writeLabels(labelsOf(clusters, points.size()));
}

void writeRows(const cv::Mat& centroids, const std::vector<int>& labels) {
    std::vector<std::size_t> sizes(static_cast<std::size_t>(centroids.rows));
    for (const int label : labels) {
        ++sizes[static_cast<std::size_t>(label)];
    }
    std::cout.precision(std::numeric_limits<float>::max_digits10);
    for (int row = 0; row < centroids.rows; ++row) {
        for (int col = 0; col < centroids.cols; ++col) {
            std::cout << centroids.at<float>(row, col) << ' ';
        }
        std::cout << sizes[static_cast<std::size_t>(row)] << '\n';
    }
    writeLabels(labels);
}

/// Upright stripes with equally many points.
template <int DIM, typename T>
std::vector<std::vector<std::size_t>> stripes(const std::vector<kelvora::KDPoint<DIM, T>>& points,
                                              std::size_t k) {
    std::vector<std::size_t> by_x(points.size());
    std::iota(by_x.begin(), by_x.end(), 0);
    std::stable_sort(by_x.begin(), by_x.end(), [&](std::size_t a, std::size_t b) {
        return points[a].coordinates[0] < points[b].coordinates[0];
    });
    std::vector<std::vector<std::size_t>> clusters(k);
    for (std::size_t rank = 0; rank < by_x.size(); ++rank) {
        clusters[rank * k / by_x.size()].push_back(by_x[rank]);
    }
    return clusters;
}

/// The clusters that the library finds in so many iterations; without any, stripes.
template <int DIM, typename T>
std::vector<int> firstLabels(const std::vector<kelvora::KDPoint<DIM, T>>& points, std::size_t k,
                             std::size_t iterations) {
    if (iterations == 0) {
        return labelsOf(stripes(points, k), points.size());
    }
    std::vector<std::vector<std::size_t>> clusters;
    std::vector<std::vector<T>> boxes;
    kelvora::CentroidClustering<DIM, T>(k, iterations, kSmallest)
        .generateClusters(points, clusters, boxes);
    return labelsOf(clusters, points.size());
}

/// OpenCV's k-means. It starts from the clusters that the library finds in `first_iterations`, and
/// computes centroids `max_iter` times, at least twice, unless nothing changes any more.
template <int DIM, typename T>
void clusterPoints(const OpenCvParameters& parameters, int runs) {
    auto points = readPoints<DIM, T>(stdin);
    const std::vector<int> first_labels =
        firstLabels(points, parameters.k, parameters.first_iterations);
    const cv::Mat data(static_cast<int>(points.size()), DIM, cv::DataType<T>::type, points.data());
    const cv::TermCriteria criteria(cv::TermCriteria::COUNT, parameters.max_iter, 0);
    cv::setNumThreads(parameters.jobs);
    std::vector<int> labels;
    cv::Mat centroids;
    for (int i = 0; i < runs; ++i) {
        labels = first_labels;
        timeRuns(1, [&] {
            cv::kmeans(data, static_cast<int>(parameters.k), labels, criteria, 1,
                       cv::KMEANS_USE_INITIAL_LABELS, centroids);
        });
    }
    writeRows(centroids, labels);
}

template <class Parameters>
void clusterPointsOfType(const std::string& type, const Parameters& parameters, int runs) {
    if (type == "2f") {
        clusterPoints<2, float>(parameters, runs);
    } else if (type == "2d") {
        clusterPoints<2, double>(parameters, runs);
    } else if (type == "3f") {
        clusterPoints<3, float>(parameters, runs);
    } else if (type == "3d") {
        clusterPoints<3, double>(parameters, runs);
    } else {
        throw std::invalid_argument("no such type of points: " + type);
    }
}

void runMethod(const std::vector<std::string>& arguments) {
    const std::string& method = arguments.at(0);
    const std::string& type = arguments.at(1);
    const auto number = [&](std::size_t i) { return std::stoi(arguments.at(i)); };
    const auto count = [&](std::size_t i) { return std::stoul(arguments.at(i)); };
    const auto runs = [&](std::size_t i) { return i < arguments.size() ? number(i) : 1; };
    if (method == "density") {
        const auto jobs = static_cast<unsigned char>(number(4));
        const DensityParameters parameters{std::stod(arguments.at(2)), number(3), jobs};
        clusterPointsOfType(type, parameters, runs(5));
    } else if (method == "centroid") {
        const CentroidParameters parameters{count(2), count(3), std::stod(arguments.at(4))};
        clusterPointsOfType(type, parameters, runs(5));
    } else if (method == "opencv" && type == "2f") {
        clusterPoints<2, float>(OpenCvParameters{count(2), count(3), number(4), number(5)},
                                runs(6));
    } else if (method == "opencv" && type == "3f") {
        clusterPoints<3, float>(OpenCvParameters{count(2), count(3), number(4), number(5)},
                                runs(6));
    } else {
        throw std::invalid_argument("no such method, or not for such points: " + method);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        runMethod({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::cerr
            << "cluster_points: " << error.what()
            << "\nUsage: cluster_points density 2f|2d|3f|3d EPS MIN_PTS JOBS [RUNS] <POINTS"
               "\n       cluster_points centroid 2f|2d|3f|3d K MAX_ITER TOL [RUNS] <POINTS"
               "\n       cluster_points opencv 2f|3f K FIRST_ITER MAX_ITER JOBS [RUNS] <POINTS\n";
        return 2;
    }
}
