// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <memory>
#include <opencv2/core/mat.hpp>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "kelvora/export.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Named parameters of a `CentroidBasedClusterGenerator`. The defaults are the same as in the
/// command-line tool, and suit windows of about 10 ms. The number of clusters has no default.
struct CentroidBasedClusterGeneratorOptions {
    float scale_width = 1.0F;   ///< Scaled units per pixel column, larger than 0.
    float scale_height = 1.0F;  ///< Scaled units per pixel row, larger than 0.
    /// Scaled units per microsecond, larger than 0. Unused in two dimensions.
    float scale_time = 0.001F;
    /// Events to ignore. `POLARITY_SEPARATE` is refused.
    EventFilterType filter_type = POLARITY_FREE;
    /// Maximum number of points, at least 1; the newest are kept. The largest value means no limit.
    unsigned long long max_capacity = std::numeric_limits<unsigned long long>::max();
    /// Time window of the events to cluster, microseconds, at least 1.
    unsigned long long max_time_length = std::numeric_limits<unsigned long long>::max();
    unsigned long long k_clusters = 0;  ///< Number of clusters. Must be set: 0 is refused.
    unsigned long long max_iter = 50;   ///< Maximum number of iterations, at least 1.
    /// Iterations end when the sum of squared distances changes by less than this, squared scaled
    /// units, larger than 0.
    double tol = 1.0;
};

/// Divides events into a given number of clusters around centroids, as points in the image plane or
/// in space and time, with `CentroidClustering`.
///
/// Each event becomes a point: its column, its row and, in three dimensions, its timestamp, each
/// multiplied by a scale. `generateClusters` clusters the points since the previous call. If there
/// are more points than allowed, it clusters the newest.
///
/// \code{.cpp}
/// kelvora::CentroidBasedClusterGeneratorOptions options;
/// options.k_clusters = 2;
/// kelvora::CentroidBasedClusterGenerator<2, float> generator(640, 480, options);
/// for (unsigned short x = 0; x < 600; x = static_cast<unsigned short>(x + 10)) {
///     const kelvora::Event2D event(x, 50, 1, 1000);
///     generator.processEvent(&event);
/// }
/// std::vector<kelvora::ClusterGeometry> clusters;
/// generator.generateClusters(10000, clusters);
/// std::cout << clusters.size() << " clusters\n";
/// \endcode
///
/// Feed events, generate clusters and reset from one thread, or make sure that these calls do not
/// overlap. All other operations may be called from any thread while events are fed, but not while
/// clusters are generated: clustering runs without a lock. Debug builds assert that feeding and
/// generating do not overlap. Generators are neither copyable nor assignable.
///
/// \note Every event belongs to a cluster: there is no noise.
/// \note Clusters differ from run to run, because the first centroid is drawn at random.
/// \note Timestamps are used as they are, not relative to a start. A `float` represents single
/// microseconds for 8 seconds; times since 1970 lose whole minutes. Subtract a start time before you
/// feed events, or use `double`.
/// \note The time window advances by the gaps between events, see `SlidingEventCounter`: in a dense
/// stream it discards nothing, however long the stream is. If the time window matters, call
/// `generateClusters` once per window. An event older than the previous one empties the counter,
/// even without a time limit: the events before it are then not clustered.
///
/// Reading points or labels takes time linear in their number, and reading centroids and sizes takes
/// time linear in the number of clusters. Every other call except clustering takes constant time.
///
/// \tparam DIM  2: the image plane. 3: space and time.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class CentroidBasedClusterGenerator {
public:
    /// Constructs a generator from named parameters.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param options  All other parameters.
    /// \throws std::runtime_error  for an invalid argument, or if the points cannot be reserved.
    /// \throws std::invalid_argument  "SlidingEventCounter: window_length must be larger than 0".
    /// \throws std::out_of_range  for an unknown `filter_type`.
    CentroidBasedClusterGenerator(int sensor_width, int sensor_height,
                                  const CentroidBasedClusterGeneratorOptions& options);

    /// Constructs a generator from all parameters in order.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param scale_width,scale_height  Scaled units per pixel, larger than 0. The scales are not
    ///     checked for being finite: points with an infinite or undefined coordinate belong to the
    ///     first cluster.
    /// \param scale_time  Scaled units per microsecond, larger than 0; with 0.001, a millisecond
    ///     counts as much as a pixel. Unused in two dimensions.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` is refused.
    /// \param max_capacity  Maximum number of points to cluster, at least 1; the newest are kept.
    ///     Each of two buffers reserves memory for 1.5 times as many. The largest value means no
    ///     limit, and nothing is reserved.
    /// \param max_time_length  Time window of the events to cluster, microseconds, at least 1.
    /// \param k_clusters  Number of clusters, at least 1.
    /// \param max_iter  Maximum number of iterations, at least 1.
    /// \param tol  Iterations end when the sum of squared distances changes by less than this,
    ///     squared scaled units, larger than 0.
    /// \throws std::runtime_error  for an invalid argument, or if the points cannot be reserved.
    /// \throws std::invalid_argument  "SlidingEventCounter: window_length must be larger than 0".
    /// \throws std::out_of_range  for an unknown `filter_type`.
    CentroidBasedClusterGenerator(int sensor_width, int sensor_height, float scale_width,
                                  float scale_height, float scale_time, EventFilterType filter_type,
                                  unsigned long long max_capacity,
                                  unsigned long long max_time_length, unsigned long long k_clusters,
                                  unsigned long long max_iter, double tol);

    /// Constructs a generator without limits on the number and time of the points.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param scale_width,scale_height  Scaled units per pixel, larger than 0.
    /// \param scale_time  Scaled units per microsecond, larger than 0.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` is refused.
    /// \param k_clusters  Number of clusters, at least 1.
    /// \param max_iter  Maximum number of iterations, at least 1.
    /// \param tol  Change that ends the iterations, squared scaled units, larger than 0.
    /// \throws std::runtime_error  for an invalid argument.
    /// \throws std::out_of_range  for an unknown `filter_type`.
    CentroidBasedClusterGenerator(int sensor_width, int sensor_height, float scale_width,
                                  float scale_height, float scale_time, EventFilterType filter_type,
                                  unsigned long long k_clusters, unsigned long long max_iter,
                                  double tol);

    /// Constructs a generator without limits, with scales of 1.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` is refused.
    /// \param k_clusters  Number of clusters, at least 1.
    /// \param max_iter  Maximum number of iterations, at least 1.
    /// \param tol  Change that ends the iterations, squared scaled units, larger than 0.
    /// \throws std::runtime_error  for an invalid argument.
    /// \throws std::out_of_range  for an unknown `filter_type`.
    CentroidBasedClusterGenerator(int sensor_width, int sensor_height, EventFilterType filter_type,
                                  unsigned long long k_clusters, unsigned long long max_iter,
                                  double tol);

    /// Not synchronised: no other call on this object may be running.
    virtual ~CentroidBasedClusterGenerator();

    /// Adds one event, unless the filter ignores it. Takes constant time. With a limited capacity,
    /// nothing is allocated as long as at most 1.5 times as many events arrive between
    /// two calls of `generateClusters`.
    ///
    /// The position is not checked. An event off the sensor becomes a point like any other: it
    /// counts, belongs to a cluster, moves its centroid and is returned by `getClusterPoints`. Only
    /// the boxes of the clusters are clipped to the sensor.
    ///
    /// \tparam EventT  `Event2D`, `Event2DFrequency` or `Event2DPeriod<T>`.
    /// \param event  Null is ignored.
    /// \throws std::bad_alloc  if there is no memory for the point. The event counts in the time
    ///     window then, but is not clustered. Events before it are kept.
    template <class EventT>
    void processEvent(const EventT* event);

    /// Adds several events. Does the same as `processEvent` for each of them, events off the sensor
    /// included, but faster.
    ///
    /// \param events  Array of `count` events. Null is ignored for any `count`.
    /// \param count  Number of events; 0 does nothing.
    template <class EventT>
    void processEvents(const EventT* events, std::size_t count);

    /// Clusters the newest points since the previous call: at most `max_capacity`, and at most as
    /// many as the time window counts events. Takes as long as `CentroidClustering`.
    ///
    /// \param timestamp  Stored in each cluster; otherwise unused.
    /// \param clusters  Emptied first. Receives one box for each of the k clusters, clipped to the
    ///     sensor; none if there are fewer than k points. A cluster without points, without area,
    ///     or off the sensor has the box (0, 0, 0, 0). In three dimensions, start and duration hold
    ///     the low 32 bits of the microseconds, and 0 for a number that does not fit into 64 bits.
    /// \note After an exception, `clusters` keeps its old content, or holds some of the clusters. The
    /// events since the previous call are then not clustered again, and the generator can still be
    /// used.
    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& clusters);

    /// Empties the time window, so that the events since the last `generateClusters` are not
    /// clustered: the next call takes as many of the newest points as events arrive after `reset`.
    /// \note The results of the last `generateClusters` are kept.
    void reset();

    /// Appends the points of each cluster of the last `generateClusters`.
    ///
    /// \param points  Receives one vector per cluster, in the order of the clusters.
    /// \param restore_scale  Divide coordinates by the scales: pixels and microseconds.
    void getClusterPoints(std::vector<std::vector<KDPoint<DIM, T>>>& points, bool restore_scale);

    /// Appends one matrix per cluster, `CV_32F` or `CV_64F` according to `T`, with one row per
    /// point and one column per coordinate.
    ///
    /// \param points  Receives a matrix of n rows and `DIM` columns for each cluster of n points.
    /// \param restore_scale  Divide coordinates by the scales: pixels and microseconds.
    void getClusterPoints(std::vector<cv::Mat>& points, bool restore_scale);

    /// Replaces `points` by a single column of the points of all clusters, cluster by cluster. Each
    /// element has one channel per coordinate.
    ///
    /// \param points  Becomes a matrix of n rows, one column and `DIM` channels for
    ///     n points in all.
    /// \param restore_scale  Divide coordinates by the scales: pixels and microseconds.
    void getClusterPoints(cv::Mat& points, bool restore_scale);

    /// Replaces `labels` by the cluster of each event that was fed between the last two calls
    /// of `generateClusters`: its index in the reported clusters, or -1.
    ///
    /// There is one label per event, in order of arrival. Events that the filter ignores
    /// have no label. The label is -1 for events that were
    /// left out because of the capacity or the time window. All labels are -1 if clustering
    /// failed, or if there were fewer than k points. `reset` changes no label of the last
    /// `generateClusters`. Events fed since then have no label yet.
    ///
    /// Takes time linear in the number of events.
    ///
    /// \param labels  Receives one label per event; none before the first `generateClusters`.
    void getClusterLabels(std::vector<int>& labels);

    /// Replaces `centroids` by the centroids of the last `generateClusters`, in scaled units, in
    /// the order of the clusters.
    /// \param centroids  One per cluster; none if there were fewer than k points.
    void getClusterCentroids(std::vector<KDPoint<DIM, T>>& centroids);

    /// Replaces `sizes` by the number of points of each cluster. They are from the last
    /// `generateClusters` that had at least k points.
    /// \param sizes  In the order of the clusters.
    /// \note If there were more clusters in an earlier call, zeros follow.
    void getClusterSizes(std::vector<unsigned long long>& sizes);

    /// Sets the number of clusters for the next `generateClusters`.
    /// \param k_clusters  At least 1.
    /// \returns whether it was set. For 0, returns false and changes nothing.
    bool setClusterNumber(unsigned long long k_clusters);

    /// Sets the maximum number of points. With 0, there are no clusters. Reserves nothing.
    /// \param max_capacity  Points; the largest value means no limit.
    /// \returns true.
    bool setMaxCapacity(unsigned long long max_capacity);

    /// Checks whether `max_time_length` would be a valid time window: not 0, and not smaller than
    /// the 100 bins (fewer for a shorter window) in which events are counted.
    /// \param max_time_length  Microseconds.
    /// \returns whether it is valid.
    /// \note The time window does not change after construction.
    bool setMaxTimeLength(unsigned long long max_time_length);

private:
    class KELVORA_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl;
};

// clang-format off
extern template class KELVORA_EXPORT CentroidBasedClusterGenerator<2, float>;
extern template class KELVORA_EXPORT CentroidBasedClusterGenerator<2, double>;
extern template class KELVORA_EXPORT CentroidBasedClusterGenerator<3, float>;
extern template class KELVORA_EXPORT CentroidBasedClusterGenerator<3, double>;

extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, float>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, float>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, float>::processEvent(const Event2DPeriod<float>*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, double>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, double>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, double>::processEvent(const Event2DPeriod<double>*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, float>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, float>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, float>::processEvent(const Event2DPeriod<float>*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, double>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, double>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, double>::processEvent(const Event2DPeriod<double>*);

extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, float>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, float>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, double>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, double>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<2, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, float>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, float>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, double>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, double>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void CentroidBasedClusterGenerator<3, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
// clang-format on

}  // namespace kelvora
