// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <opencv2/core/mat.hpp>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "kelvora/export.hpp"
#include "kelvora/kd_point.hpp"

namespace kelvora {

/// Clusters events by density, as points in the image plane or in space and time, with
/// `DensityClustering`.
///
/// Each event becomes a point: its column, its row and, in three dimensions, its timestamp, each
/// multiplied by a scale. `generateClusters` clusters the points since its last call, the newest of
/// them if there are more than allowed.
///
/// Feed events and generate clusters from one thread, or take care that these do not overlap.
/// `reset` and `getClusterPoints` into nested vectors may be called from any thread at any time: they
/// wait, by a mutex, while points are clustered. Nothing else takes it. Generators are neither
/// copyable nor assignable.
///
/// \note Times are not counted from any origin. As `float`, times of more than 17 seconds have lost
/// single microseconds, and those counted from 1970 whole minutes: subtract an origin before
/// feeding events, or use `double`.
/// \note The time window counts by gaps between events, see `SlidingEventCounter`: a dense stream
/// is not forgotten however long it lasts. Where the window of time matters, call
/// `generateClusters` once per window. An event that is older than the one before empties the
/// counter, also if the time is not bounded: of the events since the last call, those before it are
/// then not clustered.
///
/// Reading points takes time linear in their number, all else but clustering constant time.
///
/// \tparam DIM  2: the image plane. 3: space and time.
/// \tparam T  `float` or `double`.
template <int DIM, typename T>
class DensityBasedClusterGenerator {
public:
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param scale_width,scale_height  Scaled units per pixel, larger than 0. Neither these nor
    ///     the next are checked for being finite: the points that an infinite or undefined scale
    ///     makes are noise.
    /// \param scale_time  Scaled units per microsecond, larger than 0; 0.001 makes a millisecond
    ///     weigh as much as a pixel. Unused in two dimensions.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` is refused.
    /// \param max_capacity  Most points to cluster, the newest ones; at least 1. Room for 1.5 times
    ///     as many is reserved in each of two buffers. The largest number stands for no bound, and
    ///     reserves nothing.
    /// \param max_time_length  Window of time of the events to cluster, microseconds, at least 1.
    /// \param eps  Radius of neighbourhoods, scaled units, larger than 0.
    /// \param min_pts  Points that make a neighbourhood dense, at least 1.
    /// \param n_jobs  Threads to cluster with. 0: one per 2000 points, at most one per hardware
    ///     thread. -1: one per hardware thread. Of other numbers the low 8 bits count. One and
    ///     several threads differ in what they find, see `DensityClustering`.
    /// \throws std::runtime_error  for an invalid argument, or if the points cannot be reserved.
    /// \throws std::out_of_range  for an unknown `filter_type`.
    DensityBasedClusterGenerator(int sensor_width, int sensor_height, float scale_width,
                                 float scale_height, float scale_time, EventFilterType filter_type,
                                 unsigned long long max_capacity,
                                 unsigned long long max_time_length, double eps, int min_pts,
                                 int n_jobs);

    /// The same without bounds on the number and time of the points.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param scale_width,scale_height  Scaled units per pixel, larger than 0.
    /// \param scale_time  Scaled units per microsecond, larger than 0.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` is refused.
    /// \param eps  Radius of neighbourhoods, scaled units, larger than 0; strict.
    /// \param min_pts  Points that make a neighbourhood dense, at least 1.
    /// \param n_jobs  Threads to cluster with, as above.
    /// \throws std::runtime_error  for an invalid argument.
    /// \throws std::out_of_range  for an unknown `filter_type`.
    DensityBasedClusterGenerator(int sensor_width, int sensor_height, float scale_width,
                                 float scale_height, float scale_time, EventFilterType filter_type,
                                 double eps, int min_pts, int n_jobs);

    /// The same without bounds, with scales of 1.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` is refused.
    /// \param eps  Radius of neighbourhoods, scaled units, larger than 0; strict.
    /// \param min_pts  Points that make a neighbourhood dense, at least 1.
    /// \param n_jobs  Threads to cluster with, as above.
    /// \throws std::runtime_error  for an invalid argument.
    /// \throws std::out_of_range  for an unknown `filter_type`.
    DensityBasedClusterGenerator(int sensor_width, int sensor_height, EventFilterType filter_type,
                                 double eps, int min_pts, int n_jobs);

    /// Waits for nothing: no other call may be under way.
    virtual ~DensityBasedClusterGenerator();

    /// Takes one event, unless the filter ignores it. Constant time; with a bounded capacity, no
    /// allocation as long as `generateClusters` is called before 1.5 times as many events are fed.
    ///
    /// \tparam EventT  `Event2D`, `Event2DFrequency` or `Event2DPeriod<T>`.
    /// \param event  Null is ignored.
    template <class EventT>
    void processEvent(const EventT* event);

    /// Takes events, one after the other: the same as `processEvent` for each of them, in less time.
    ///
    /// \param events  `count` events in a row. Null is ignored, whatever `count` is.
    /// \param count  Number of events; 0 does nothing.
    template <class EventT>
    void processEvents(const EventT* events, std::size_t count);

    /// Clusters the points since the last call, the newest of them: at most `max_capacity`, and not
    /// more than the window of time counts events. Takes the time of `DensityClustering`.
    ///
    /// \param timestamp  Stored in each cluster; otherwise unused.
    /// \param clusters  Emptied first; then a box for each cluster, clipped to the sensor. A
    ///     cluster without area, or off the sensor, has the box (0, 0, 0, 0). In three dimensions,
    ///     start and duration hold the low 32 bits of the microseconds, 0 where a number does not
    ///     fit 64 bits.
    /// \throws std::runtime_error  "n_jobs must be greater than 0" if the number of threads came to
    ///     0.
    /// \throws std::system_error  if a thread cannot be started.
    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& clusters);

    /// Forgets the points of the last `generateClusters`, but not the events since.
    void reset();

    /// Appends the points of each cluster of the last `generateClusters`. After `reset`, they are
    /// still as many clusters, but without points.
    ///
    /// \param points  Grows by a vector for each cluster, in the order of the clusters.
    /// \param restore_scale  Divide coordinates by the scales: pixels and microseconds.
    void getClusterPoints(std::vector<std::vector<KDPoint<DIM, T>>>& points, bool restore_scale);

    /// Appends a matrix for each cluster, `CV_32F` or `CV_64F` as `T` is: a row per point, a column
    /// per coordinate. Takes no lock: not while clusters are generated.
    ///
    /// \param points  Grows by a matrix of n rows and `DIM` columns for each cluster of n points.
    /// \param restore_scale  Divide coordinates by the scales: pixels and microseconds.
    void getClusterPoints(std::vector<cv::Mat>& points, bool restore_scale);

    /// Replaces `points` by one column with the points of all clusters, one cluster after the
    /// other, each an element with a channel per coordinate. Takes no lock: not while clusters are
    /// generated.
    ///
    /// \param points  Becomes a matrix of n rows, one column and `DIM` channels for n points in all.
    /// \param restore_scale  Divide coordinates by the scales: pixels and microseconds.
    void getClusterPoints(cv::Mat& points, bool restore_scale);

    /// Sets the most points to cluster. Reserves nothing.
    /// \param max_capacity  Points, at least 1; the largest number stands for no bound.
    /// \returns whether it was set: false, and nothing changes, for 0.
    bool setMaxCapacity(unsigned long long max_capacity);

    /// Tells whether `max_time_length` could be the window of time: it is not 0, and not smaller
    /// than the 100 bins (fewer for a shorter window) in which events are counted.
    /// \param max_time_length  Microseconds.
    /// \returns whether it could be; 0 could not.
    /// \note The window stays as it was constructed.
    bool setMaxTimeLength(unsigned long long max_time_length);

private:
    class KELVORA_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl;
};

// clang-format off
extern template class KELVORA_EXPORT DensityBasedClusterGenerator<2, float>;
extern template class KELVORA_EXPORT DensityBasedClusterGenerator<2, double>;
extern template class KELVORA_EXPORT DensityBasedClusterGenerator<3, float>;
extern template class KELVORA_EXPORT DensityBasedClusterGenerator<3, double>;

extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, float>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, float>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, float>::processEvent(const Event2DPeriod<float>*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, double>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, double>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, double>::processEvent(const Event2DPeriod<double>*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, float>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, float>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, float>::processEvent(const Event2DPeriod<float>*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, double>::processEvent(const Event2D*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, double>::processEvent(const Event2DFrequency*);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, double>::processEvent(const Event2DPeriod<double>*);

extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, float>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, float>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, double>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, double>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<2, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, float>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, float>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, float>::processEvents(const Event2DPeriod<float>*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, double>::processEvents(const Event2D*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, double>::processEvents(const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void DensityBasedClusterGenerator<3, double>::processEvents(const Event2DPeriod<double>*, std::size_t);
// clang-format on

}  // namespace kelvora
