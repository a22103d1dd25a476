// SPDX-License-Identifier: MIT
#include "kelvora/density_based_cluster_generator.hpp"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <thread>

#include "events/rejected_polarity.hpp"
#include "exclusive_use.hpp"
#include "generators/box_to_geometry.hpp"
#include "generators/cluster_generator_base.hpp"
#include "generators/cluster_point_export.hpp"
#include "generators/point_checks.hpp"
#include "generators/point_intake.hpp"
#include "generators/point_scales.hpp"
#include "generators/reported_events.hpp"
#include "kelvora/density_clustering.hpp"
#include "kelvora/sliding_event_counter.hpp"
#include "mutex.hpp"

namespace kelvora {

namespace {

constexpr unsigned long long kUnbounded = std::numeric_limits<unsigned long long>::max();
constexpr std::size_t kCounterBins = 100;
constexpr std::size_t kPointsPerJob = 2000;
const char* const kClassName = "DensityBasedClusterGenerator";

/// Number of threads for `n` points. Only the low 8 bits of the number are used.
unsigned char jobsFor(int n_jobs, std::size_t n) {
    static const unsigned hardware_threads = std::thread::hardware_concurrency();
    if (n_jobs == 0) {
        return static_cast<unsigned char>(
            std::min<std::size_t>(hardware_threads, n / kPointsPerJob + 1));
    }
    return static_cast<unsigned char>(n_jobs == -1 ? hardware_threads
                                                   : static_cast<unsigned>(n_jobs));
}

}  // namespace

template <int DIM, typename T>
class DensityBasedClusterGenerator<DIM, T>::Impl : public ClusterGeneratorBase {
public:
    using Point = KDPoint<DIM, T>;

    Impl(int sensor_width_, int sensor_height_, const PointScales& scales_,
         EventFilterType filter_type_, unsigned long long max_capacity_,
         unsigned long long max_time_length_, double eps, int min_pts, int n_jobs_);

    template <class EventT>
    void processEvent(const EventT* event);

    template <class EventT>
    void processEvents(const EventT* events, std::size_t count);

    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& out) override;

    void reset() override;

    void getClusterPoints(std::vector<std::vector<Point>>& points, bool restore_scale) {
        const MutexLock lock(points_mutex);
        exportPoints(clusters, working_points, restore_scale ? &scales : nullptr, points);
    }

    /// For `cv::Mat`, and a vector of them. Takes no lock, as the header says: the caller must not
    /// cluster or reset at the same time.
    template <class Matrices>
    void getClusterPoints(Matrices& matrices,
                          bool restore_scale) const KELVORA_NO_THREAD_SAFETY_ANALYSIS {
        exportPoints(clusters, working_points, restore_scale ? &scales : nullptr, matrices);
    }

    void getClusterLabels(std::vector<int>& labels) {
        const MutexLock lock(points_mutex);
        reported_events.label(clusters, labels);
    }

    bool setMaxCapacity(unsigned long long max_capacity_);

    bool setMaxTimeLength(unsigned long long max_time_length_);

private:
    void clusterWorkingPoints() KELVORA_REQUIRES(points_mutex);

    PointScales scales;
    EventFilterType filter_type;
    std::uint8_t rejected_polarity = 0;
    unsigned long long max_capacity;
    unsigned long long max_time_length;
    int n_jobs;
    DensityClustering<DIM, T> clustering KELVORA_GUARDED_BY(points_mutex);
    Mutex points_mutex;
    /// Points of the last call, which `clusters` refers to.
    std::vector<Point> working_points KELVORA_GUARDED_BY(points_mutex);
    /// Events of the last call, of which `working_points` are the newest.
    ReportedEvents reported_events KELVORA_GUARDED_BY(points_mutex);
    /// Points since. Not guarded: `processEvent` takes no lock, and must not overlap with
    /// `generateClusters`.
    std::vector<Point> incoming_points;
    std::vector<std::vector<std::size_t>> clusters KELVORA_GUARDED_BY(points_mutex);
    std::vector<std::vector<T>> boxes;  ///< Used by `generateClusters` only.
    /// Not guarded, for the same reason as `incoming_points`.
    std::unique_ptr<SlidingEventCounter> event_counter;

public:
    /// Held by the calls that must not overlap with each other: feeding events and clustering.
    ExclusiveUse exclusive_use;
};

template <int DIM, typename T>
DensityBasedClusterGenerator<DIM, T>::Impl::Impl(int sensor_width_, int sensor_height_,
                                                 const PointScales& scales_,
                                                 EventFilterType filter_type_,
                                                 unsigned long long max_capacity_,
                                                 unsigned long long max_time_length_, double eps,
                                                 int min_pts, int n_jobs_)
    : ClusterGeneratorBase(sensor_width_, sensor_height_),
      scales(scales_),
      filter_type(filter_type_),
      max_capacity(max_capacity_),
      max_time_length(max_time_length_),
      n_jobs(n_jobs_),
      clustering(eps, min_pts) {
    requireOnePolarityCount(filter_type, kClassName);
    // Assigned here, because the check above must come first.
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer)
    rejected_polarity = rejectedPolarity(filter_type);
    requireSensorScalesAndCapacity(sensor_width, sensor_height, scales, max_capacity, kClassName);
    require(max_time_length > 0, kClassName, ": max_time_length should be larger than 0");
    require(!(0.0 >= eps), kClassName, ": eps should be larger than 0");
    require(min_pts >= 1, kClassName, ": min_pts should be larger than 0");
    reservePoints(incoming_points, working_points, max_capacity, kClassName);
    event_counter = std::make_unique<SlidingEventCounter>(max_time_length, kCounterBins);
}

template <int DIM, typename T>
template <class EventT>
void DensityBasedClusterGenerator<DIM, T>::Impl::processEvent(const EventT* event) {
    takeEvent(event, rejected_polarity, scales, *event_counter, incoming_points);
}

template <int DIM, typename T>
template <class EventT>
void DensityBasedClusterGenerator<DIM, T>::Impl::processEvents(const EventT* events,
                                                               std::size_t count) {
    takeEvents(events, count, rejected_polarity, scales, *event_counter, incoming_points);
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::Impl::generateClusters(
    std::size_t timestamp, std::vector<ClusterGeometry>& out) {
    {
        const MutexLock lock(points_mutex);
        reported_events.replace(incoming_points.size());
        exchangePoints(working_points, incoming_points, *event_counter, max_capacity);
        clusterWorkingPoints();
    }
    boxesToGeometries<DIM>(boxes, scales, sensor_width, sensor_height, timestamp, out);
}

/// If this fails, there are no clusters.
template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::Impl::clusterWorkingPoints() {
    try {
        clustering.generateClustersMultiThread(working_points, clusters, boxes,
                                               jobsFor(n_jobs, working_points.size()));
    } catch (...) {
        clusters.clear();
        boxes.clear();
        throw;
    }
    reported_events.setClustered(working_points.size());
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::Impl::reset() {
    const MutexLock lock(points_mutex);
    working_points.clear();
    reported_events.setClustered(0);
}

template <int DIM, typename T>
bool DensityBasedClusterGenerator<DIM, T>::Impl::setMaxCapacity(unsigned long long max_capacity_) {
    if (max_capacity_ == 0) {
        return false;
    }
    max_capacity = max_capacity_;
    return true;
}

template <int DIM, typename T>
bool DensityBasedClusterGenerator<DIM, T>::Impl::setMaxTimeLength(
    unsigned long long max_time_length_) {
    if (!event_counter->setWindowLength(max_time_length_)) {
        return false;
    }
    max_time_length = max_time_length_;
    return true;
}

template <int DIM, typename T>
DensityBasedClusterGenerator<DIM, T>::DensityBasedClusterGenerator(
    int sensor_width, int sensor_height, const DensityBasedClusterGeneratorOptions& options)
    : DensityBasedClusterGenerator(sensor_width, sensor_height, options.scale_width,
                                   options.scale_height, options.scale_time, options.filter_type,
                                   options.max_capacity, options.max_time_length, options.eps,
                                   options.min_pts, options.n_jobs) {}

template <int DIM, typename T>
DensityBasedClusterGenerator<DIM, T>::DensityBasedClusterGenerator(
    int sensor_width, int sensor_height, float scale_width, float scale_height, float scale_time,
    EventFilterType filter_type, unsigned long long max_capacity,
    unsigned long long max_time_length, double eps, int min_pts, int n_jobs)
    : impl(std::make_unique<Impl>(sensor_width, sensor_height,
                                  PointScales{scale_width, scale_height, scale_time}, filter_type,
                                  max_capacity, max_time_length, eps, min_pts, n_jobs)) {}

template <int DIM, typename T>
DensityBasedClusterGenerator<DIM, T>::DensityBasedClusterGenerator(
    int sensor_width, int sensor_height, float scale_width, float scale_height, float scale_time,
    EventFilterType filter_type, double eps, int min_pts, int n_jobs)
    : DensityBasedClusterGenerator(sensor_width, sensor_height, scale_width, scale_height,
                                   scale_time, filter_type, kUnbounded, kUnbounded, eps, min_pts,
                                   n_jobs) {}

template <int DIM, typename T>
DensityBasedClusterGenerator<DIM, T>::DensityBasedClusterGenerator(int sensor_width,
                                                                   int sensor_height,
                                                                   EventFilterType filter_type,
                                                                   double eps, int min_pts,
                                                                   int n_jobs)
    : DensityBasedClusterGenerator(sensor_width, sensor_height, 1.0F, 1.0F, 1.0F, filter_type, eps,
                                   min_pts, n_jobs) {}

template <int DIM, typename T>
DensityBasedClusterGenerator<DIM, T>::~DensityBasedClusterGenerator() = default;

template <int DIM, typename T>
template <class EventT>
void DensityBasedClusterGenerator<DIM, T>::processEvent(const EventT* event) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->processEvent(event);
}

template <int DIM, typename T>
template <class EventT>
void DensityBasedClusterGenerator<DIM, T>::processEvents(const EventT* events, std::size_t count) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->processEvents(events, count);
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::generateClusters(
    std::size_t timestamp, std::vector<ClusterGeometry>& clusters) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->generateClusters(timestamp, clusters);
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::reset() {
    impl->reset();
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::getClusterPoints(
    std::vector<std::vector<KDPoint<DIM, T>>>& points, bool restore_scale) {
    impl->getClusterPoints(points, restore_scale);
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::getClusterPoints(std::vector<cv::Mat>& points,
                                                            bool restore_scale) {
    impl->getClusterPoints(points, restore_scale);
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::getClusterPoints(cv::Mat& points, bool restore_scale) {
    impl->getClusterPoints(points, restore_scale);
}

template <int DIM, typename T>
void DensityBasedClusterGenerator<DIM, T>::getClusterLabels(std::vector<int>& labels) {
    impl->getClusterLabels(labels);
}

template <int DIM, typename T>
bool DensityBasedClusterGenerator<DIM, T>::setMaxCapacity(unsigned long long max_capacity) {
    return impl->setMaxCapacity(max_capacity);
}

template <int DIM, typename T>
bool DensityBasedClusterGenerator<DIM, T>::setMaxTimeLength(unsigned long long max_time_length) {
    return impl->setMaxTimeLength(max_time_length);
}

// clang-format off
template class DensityBasedClusterGenerator<2, float>;
template class DensityBasedClusterGenerator<2, double>;
template class DensityBasedClusterGenerator<3, float>;
template class DensityBasedClusterGenerator<3, double>;

template void DensityBasedClusterGenerator<2, float>::processEvent(const Event2D*);
template void DensityBasedClusterGenerator<2, float>::processEvent(const Event2DFrequency*);
template void DensityBasedClusterGenerator<2, float>::processEvent(const Event2DPeriod<float>*);
template void DensityBasedClusterGenerator<2, double>::processEvent(const Event2D*);
template void DensityBasedClusterGenerator<2, double>::processEvent(const Event2DFrequency*);
template void DensityBasedClusterGenerator<2, double>::processEvent(const Event2DPeriod<double>*);
template void DensityBasedClusterGenerator<3, float>::processEvent(const Event2D*);
template void DensityBasedClusterGenerator<3, float>::processEvent(const Event2DFrequency*);
template void DensityBasedClusterGenerator<3, float>::processEvent(const Event2DPeriod<float>*);
template void DensityBasedClusterGenerator<3, double>::processEvent(const Event2D*);
template void DensityBasedClusterGenerator<3, double>::processEvent(const Event2DFrequency*);
template void DensityBasedClusterGenerator<3, double>::processEvent(const Event2DPeriod<double>*);

template void DensityBasedClusterGenerator<2, float>::processEvents(const Event2D*, std::size_t);
template void DensityBasedClusterGenerator<2, float>::processEvents(const Event2DFrequency*, std::size_t);
template void DensityBasedClusterGenerator<2, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
template void DensityBasedClusterGenerator<2, double>::processEvents(const Event2D*, std::size_t);
template void DensityBasedClusterGenerator<2, double>::processEvents(const Event2DFrequency*, std::size_t);
template void DensityBasedClusterGenerator<2, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
template void DensityBasedClusterGenerator<3, float>::processEvents(const Event2D*, std::size_t);
template void DensityBasedClusterGenerator<3, float>::processEvents(const Event2DFrequency*, std::size_t);
template void DensityBasedClusterGenerator<3, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
template void DensityBasedClusterGenerator<3, double>::processEvents(const Event2D*, std::size_t);
template void DensityBasedClusterGenerator<3, double>::processEvents(const Event2DFrequency*, std::size_t);
template void DensityBasedClusterGenerator<3, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
// clang-format on

}  // namespace kelvora
