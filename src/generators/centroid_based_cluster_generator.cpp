// SPDX-License-Identifier: MIT
#include "kelvora/centroid_based_cluster_generator.hpp"

#include <cstdint>
#include <limits>

#include "events/rejected_polarity.hpp"
#include "exclusive_use.hpp"
#include "generators/box_to_geometry.hpp"
#include "generators/cluster_generator_base.hpp"
#include "generators/cluster_point_export.hpp"
#include "generators/point_checks.hpp"
#include "generators/point_intake.hpp"
#include "generators/point_scales.hpp"
#include "generators/reported_events.hpp"
#include "kelvora/centroid_clustering.hpp"
#include "kelvora/sliding_event_counter.hpp"
#include "mutex.hpp"

namespace kelvora {

namespace {

constexpr unsigned long long kUnbounded = std::numeric_limits<unsigned long long>::max();
constexpr std::size_t kCounterBins = 100;
const char* const kClassName = "CentroidBasedClusterGenerator";

}  // namespace

template <int DIM, typename T>
class CentroidBasedClusterGenerator<DIM, T>::Impl : public ClusterGeneratorBase {
public:
    using Point = KDPoint<DIM, T>;

    Impl(int sensor_width_, int sensor_height_, const PointScales& scales_,
         EventFilterType filter_type_, unsigned long long max_capacity_,
         unsigned long long max_time_length, unsigned long long k_clusters,
         unsigned long long max_iter, double tol);

    template <class EventT>
    void processEvent(const EventT* event);

    template <class EventT>
    void processEvents(const EventT* events, std::size_t count);

    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& out) override;

    void reset() override;

    template <class Points>
    void getClusterPoints(Points& points, bool restore_scale) {
        const MutexLock lock(points_mutex);
        exportPoints(clusters, working_points, restore_scale ? &scales : nullptr, points);
    }

    void getClusterLabels(std::vector<int>& labels) {
        const MutexLock lock(points_mutex);
        reported_events.label(clusters, labels);
    }

    void getClusterCentroids(std::vector<Point>& centroids);

    void getClusterSizes(std::vector<unsigned long long>& sizes);

    bool setClusterNumber(unsigned long long k_clusters);

    bool setMaxCapacity(unsigned long long max_capacity_);

    bool setMaxTimeLength(unsigned long long max_time_length);

private:
    void clusterWithoutLock() KELVORA_NO_THREAD_SAFETY_ANALYSIS;

    PointScales scales;
    EventFilterType filter_type;
    std::uint8_t rejected_polarity = 0;
    unsigned long long max_capacity KELVORA_GUARDED_BY(points_mutex);
    CentroidClustering<DIM, T> clustering KELVORA_GUARDED_BY(points_mutex);
    Mutex points_mutex;
    /// Points of the last call, which `clusters` refers to.
    std::vector<Point> working_points KELVORA_GUARDED_BY(points_mutex);
    /// Events of the last call, of which `working_points` are the newest.
    ReportedEvents reported_events KELVORA_GUARDED_BY(points_mutex);
    /// Points since. Not guarded: `processEvent` takes no lock, and must not overlap with
    /// `generateClusters`.
    std::vector<Point> incoming_points;
    std::vector<std::vector<std::size_t>> clusters KELVORA_GUARDED_BY(points_mutex);
    std::vector<std::vector<T>> cluster_boxes;  ///< Used by `generateClusters` only.
    /// Not guarded, for the same reason as `incoming_points`.
    std::unique_ptr<SlidingEventCounter> event_counter;

public:
    /// Held by the calls that must overlap with nothing else: feeding events and clustering.
    ExclusiveUse exclusive_use;
};

template <int DIM, typename T>
CentroidBasedClusterGenerator<DIM, T>::Impl::Impl(
    int sensor_width_, int sensor_height_, const PointScales& scales_, EventFilterType filter_type_,
    unsigned long long max_capacity_, unsigned long long max_time_length,
    unsigned long long k_clusters, unsigned long long max_iter, double tol)
    : ClusterGeneratorBase(sensor_width_, sensor_height_),
      scales(scales_),
      filter_type(filter_type_),
      max_capacity(max_capacity_),
      clustering(k_clusters, max_iter, tol) {
    requireOnePolarityCount(filter_type, kClassName);
    // Assigned here, because the check above must come first.
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer)
    rejected_polarity = rejectedPolarity(filter_type);
    requireSensorScalesAndCapacity(sensor_width, sensor_height, scales, max_capacity, kClassName);
    // `clustering` refuses the same values first, but this class does not depend on that.
    require(k_clusters > 0, kClassName, ": k_clusters should be larger than 0");
    require(max_iter > 0, kClassName, ": max_iter should be larger than 0");
    require(!(0.0 >= tol), kClassName, ": tol should be larger than 0");
    reservePoints(incoming_points, working_points, max_capacity, kClassName);
    event_counter = std::make_unique<SlidingEventCounter>(max_time_length, kCounterBins);
}

template <int DIM, typename T>
template <class EventT>
void CentroidBasedClusterGenerator<DIM, T>::Impl::processEvent(const EventT* event) {
    takeEvent(event, rejected_polarity, scales, *event_counter, incoming_points);
}

template <int DIM, typename T>
template <class EventT>
void CentroidBasedClusterGenerator<DIM, T>::Impl::processEvents(const EventT* events,
                                                                std::size_t count) {
    takeEvents(events, count, rejected_polarity, scales, *event_counter, incoming_points);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::Impl::generateClusters(
    std::size_t timestamp, std::vector<ClusterGeometry>& out) {
    {
        const MutexLock lock(points_mutex);
        reported_events.replace(incoming_points.size());
        exchangePoints(working_points, incoming_points, *event_counter, max_capacity);
    }
    clusterWithoutLock();
    boxesToGeometries<DIM>(cluster_boxes, scales, sensor_width, sensor_height, timestamp, out);
}

/// Clusters while the mutex is not locked, so that the lock is held only briefly. The caller must
/// not run any other operation at the same time, and so needs no lock. If this fails, there are no
/// clusters.
template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::Impl::clusterWithoutLock() {
    try {
        clustering.generateClustersPrivate(working_points, clusters, cluster_boxes);
    } catch (...) {
        clusters.clear();
        cluster_boxes.clear();
        throw;
    }
    reported_events.setClustered(working_points.size());
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::Impl::reset() {
    const MutexLock lock(points_mutex);
    event_counter->reset();
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::Impl::getClusterCentroids(
    std::vector<Point>& centroids) {
    const MutexLock lock(points_mutex);
    clustering.getCentroids(centroids);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::Impl::getClusterSizes(
    std::vector<unsigned long long>& sizes) {
    const MutexLock lock(points_mutex);
    std::vector<std::size_t> counts;
    clustering.getNumPointsPerCluster(counts);
    sizes.assign(counts.begin(), counts.end());
}

template <int DIM, typename T>
bool CentroidBasedClusterGenerator<DIM, T>::Impl::setClusterNumber(unsigned long long k_clusters) {
    const MutexLock lock(points_mutex);
    return clustering.setClusterNumber(k_clusters);
}

template <int DIM, typename T>
bool CentroidBasedClusterGenerator<DIM, T>::Impl::setMaxCapacity(unsigned long long max_capacity_) {
    const MutexLock lock(points_mutex);
    max_capacity = max_capacity_;
    return true;
}

template <int DIM, typename T>
bool CentroidBasedClusterGenerator<DIM, T>::Impl::setMaxTimeLength(
    unsigned long long max_time_length) {
    const MutexLock lock(points_mutex);
    return event_counter->setWindowLength(max_time_length);
}

template <int DIM, typename T>
CentroidBasedClusterGenerator<DIM, T>::CentroidBasedClusterGenerator(
    int sensor_width, int sensor_height, const CentroidBasedClusterGeneratorOptions& options)
    : CentroidBasedClusterGenerator(sensor_width, sensor_height, options.scale_width,
                                    options.scale_height, options.scale_time, options.filter_type,
                                    options.max_capacity, options.max_time_length,
                                    options.k_clusters, options.max_iter, options.tol) {}

template <int DIM, typename T>
CentroidBasedClusterGenerator<DIM, T>::CentroidBasedClusterGenerator(
    int sensor_width, int sensor_height, float scale_width, float scale_height, float scale_time,
    EventFilterType filter_type, unsigned long long max_capacity,
    unsigned long long max_time_length, unsigned long long k_clusters, unsigned long long max_iter,
    double tol)
    : impl(std::make_unique<Impl>(sensor_width, sensor_height,
                                  PointScales{scale_width, scale_height, scale_time}, filter_type,
                                  max_capacity, max_time_length, k_clusters, max_iter, tol)) {}

template <int DIM, typename T>
CentroidBasedClusterGenerator<DIM, T>::CentroidBasedClusterGenerator(
    int sensor_width, int sensor_height, float scale_width, float scale_height, float scale_time,
    EventFilterType filter_type, unsigned long long k_clusters, unsigned long long max_iter,
    double tol)
    : CentroidBasedClusterGenerator(sensor_width, sensor_height, scale_width, scale_height,
                                    scale_time, filter_type, kUnbounded, kUnbounded, k_clusters,
                                    max_iter, tol) {}

template <int DIM, typename T>
CentroidBasedClusterGenerator<DIM, T>::CentroidBasedClusterGenerator(
    int sensor_width, int sensor_height, EventFilterType filter_type, unsigned long long k_clusters,
    unsigned long long max_iter, double tol)
    : CentroidBasedClusterGenerator(sensor_width, sensor_height, 1.0F, 1.0F, 1.0F, filter_type,
                                    k_clusters, max_iter, tol) {}

template <int DIM, typename T>
CentroidBasedClusterGenerator<DIM, T>::~CentroidBasedClusterGenerator() = default;

template <int DIM, typename T>
template <class EventT>
void CentroidBasedClusterGenerator<DIM, T>::processEvent(const EventT* event) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->processEvent(event);
}

template <int DIM, typename T>
template <class EventT>
void CentroidBasedClusterGenerator<DIM, T>::processEvents(const EventT* events, std::size_t count) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->processEvents(events, count);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::generateClusters(
    std::size_t timestamp, std::vector<ClusterGeometry>& clusters) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->generateClusters(timestamp, clusters);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::reset() {
    impl->reset();
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::getClusterPoints(
    std::vector<std::vector<KDPoint<DIM, T>>>& points, bool restore_scale) {
    impl->getClusterPoints(points, restore_scale);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::getClusterPoints(std::vector<cv::Mat>& points,
                                                             bool restore_scale) {
    impl->getClusterPoints(points, restore_scale);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::getClusterPoints(cv::Mat& points, bool restore_scale) {
    impl->getClusterPoints(points, restore_scale);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::getClusterLabels(std::vector<int>& labels) {
    impl->getClusterLabels(labels);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::getClusterCentroids(
    std::vector<KDPoint<DIM, T>>& centroids) {
    impl->getClusterCentroids(centroids);
}

template <int DIM, typename T>
void CentroidBasedClusterGenerator<DIM, T>::getClusterSizes(
    std::vector<unsigned long long>& sizes) {
    impl->getClusterSizes(sizes);
}

template <int DIM, typename T>
bool CentroidBasedClusterGenerator<DIM, T>::setClusterNumber(unsigned long long k_clusters) {
    return impl->setClusterNumber(k_clusters);
}

template <int DIM, typename T>
bool CentroidBasedClusterGenerator<DIM, T>::setMaxCapacity(unsigned long long max_capacity) {
    return impl->setMaxCapacity(max_capacity);
}

template <int DIM, typename T>
bool CentroidBasedClusterGenerator<DIM, T>::setMaxTimeLength(unsigned long long max_time_length) {
    return impl->setMaxTimeLength(max_time_length);
}

// clang-format off
template class CentroidBasedClusterGenerator<2, float>;
template class CentroidBasedClusterGenerator<2, double>;
template class CentroidBasedClusterGenerator<3, float>;
template class CentroidBasedClusterGenerator<3, double>;

template void CentroidBasedClusterGenerator<2, float>::processEvent(const Event2D*);
template void CentroidBasedClusterGenerator<2, float>::processEvent(const Event2DFrequency*);
template void CentroidBasedClusterGenerator<2, float>::processEvent(const Event2DPeriod<float>*);
template void CentroidBasedClusterGenerator<2, double>::processEvent(const Event2D*);
template void CentroidBasedClusterGenerator<2, double>::processEvent(const Event2DFrequency*);
template void CentroidBasedClusterGenerator<2, double>::processEvent(const Event2DPeriod<double>*);
template void CentroidBasedClusterGenerator<3, float>::processEvent(const Event2D*);
template void CentroidBasedClusterGenerator<3, float>::processEvent(const Event2DFrequency*);
template void CentroidBasedClusterGenerator<3, float>::processEvent(const Event2DPeriod<float>*);
template void CentroidBasedClusterGenerator<3, double>::processEvent(const Event2D*);
template void CentroidBasedClusterGenerator<3, double>::processEvent(const Event2DFrequency*);
template void CentroidBasedClusterGenerator<3, double>::processEvent(const Event2DPeriod<double>*);

template void CentroidBasedClusterGenerator<2, float>::processEvents(const Event2D*, std::size_t);
template void CentroidBasedClusterGenerator<2, float>::processEvents(const Event2DFrequency*, std::size_t);
template void CentroidBasedClusterGenerator<2, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
template void CentroidBasedClusterGenerator<2, double>::processEvents(const Event2D*, std::size_t);
template void CentroidBasedClusterGenerator<2, double>::processEvents(const Event2DFrequency*, std::size_t);
template void CentroidBasedClusterGenerator<2, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
template void CentroidBasedClusterGenerator<3, float>::processEvents(const Event2D*, std::size_t);
template void CentroidBasedClusterGenerator<3, float>::processEvents(const Event2DFrequency*, std::size_t);
template void CentroidBasedClusterGenerator<3, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
template void CentroidBasedClusterGenerator<3, double>::processEvents(const Event2D*, std::size_t);
template void CentroidBasedClusterGenerator<3, double>::processEvents(const Event2DFrequency*, std::size_t);
template void CentroidBasedClusterGenerator<3, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
// clang-format on

}  // namespace kelvora
