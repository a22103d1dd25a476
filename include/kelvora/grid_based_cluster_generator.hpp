// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <opencv2/core/mat.hpp>
#include <vector>

#include "kelvora/cluster_geometry.hpp"
#include "kelvora/events.hpp"
#include "kelvora/export.hpp"

namespace kelvora {

/// Named parameters of a `GridBasedClusterGenerator`. The defaults are the same as in the
/// command-line tool, and suit windows of about 10 ms.
struct GridBasedClusterGeneratorOptions {
    int cell_width = 5;   ///< Pixels, at least 1.
    int cell_height = 5;  ///< Pixels, at least 1.
    /// Largest accepted width and height of a cluster, pixels.
    int max_cluster_size = 10000;
    /// Smallest accepted width and height of a cluster, pixels.
    int min_cluster_size = 15;
    /// Events to ignore. `POLARITY_SEPARATE` ignores none and counts the polarities separately.
    EventFilterType filter_type = POLARITY_FREE;
    /// Count at most one event per pixel between two calls of `generateClusters`.
    bool count_pixel_once = true;
    /// Events that make a cell active; with 0, one event is enough.
    unsigned short activation_threshold = 2;
};

/// Clusters events by counting them in the cells of a grid and joining neighbouring active cells.
///
/// Feed events with `processEvent`, then get the clusters of all events since the previous call
/// with `generateClusters`. A cell becomes active when it has counted `activation_threshold`
/// events. It then marks itself and the cells to the right, below, and below right. Each
/// 4-connected group of marked cells is one cluster, reported as the box around it in pixels.
///
/// \code{.cpp}
/// kelvora::GridBasedClusterGeneratorOptions options;
/// options.min_cluster_size = 10;
/// kelvora::GridBasedClusterGenerator generator(640, 480, options);
/// for (unsigned short x = 100; x < 120; ++x) {
///     const kelvora::Event2D event(x, 50, 1, 1000);
///     generator.processEvent(&event);
/// }
/// std::vector<kelvora::ClusterGeometry> clusters;
/// generator.generateClusters(10000, clusters);
/// for (const kelvora::ClusterGeometry& cluster : clusters) {
///     std::cout << "at " << cluster.x << ", " << cluster.width << " pixels wide\n";
/// }
/// \endcode
///
/// The result depends only on the events and their order; timestamps are not read. An event
/// takes constant time, and `generateClusters` visits each cell once.
///
/// Only one thread at a time may use a generator; debug builds assert this. Different generators
/// are independent, except for the note at `processEvent`. Generators are
/// neither copyable nor assignable.
class KELVORA_EXPORT GridBasedClusterGenerator {
public:
    /// Constructs a generator from named parameters.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param options  All other parameters.
    /// \throws std::invalid_argument  if a cell or the sensor has a size below 1.
    GridBasedClusterGenerator(int sensor_width, int sensor_height,
                              const GridBasedClusterGeneratorOptions& options);

    /// Constructs a generator from all parameters in order.
    ///
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param cell_width,cell_height  Size of a cell, pixels, at least 1. Cells at the right and
    ///     lower edge may extend beyond the sensor.
    /// \param max_cluster_size  Largest accepted width and height of a cluster, pixels.
    /// \param min_cluster_size  Smallest accepted width and height of a cluster, pixels. Sizes are
    ///     whole cells, measured before the box is clipped to the sensor.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` ignores none and counts the
    ///     polarities separately: a cell is active when both counts have reached the threshold. Not
    ///     validated: an unknown value makes the first `processEvent` throw.
    /// \param count_pixel_once  Count at most one event per pixel between
    ///     two calls of `generateClusters`.
    /// \param activation_threshold  Events that make a cell active; with 0, one event is enough.
    /// \throws std::invalid_argument  if a cell or the sensor has a size below 1.
    /// \note The largest size comes before the smallest.
    GridBasedClusterGenerator(int sensor_width, int sensor_height, int cell_width, int cell_height,
                              int max_cluster_size, int min_cluster_size,
                              EventFilterType filter_type, bool count_pixel_once,
                              unsigned short activation_threshold);

    /// Invalidates the map returned by `getActiveMap`.
    virtual ~GridBasedClusterGenerator();

    /// Counts one event, unless the filter ignores it. Takes constant time and allocates nothing.
    ///
    /// \tparam Event  `Event2D`, `Event2DFrequency`, or `Event2DPeriod` of `int`, `unsigned int`,
    ///     `float`, `double`, `long long` or `unsigned long long`.
    /// \param event  Must not be null, and must be on the sensor unless the filter ignores it.
    ///     Neither is checked, except in hardened builds. Polarities other than 0 and 1 count as
    ///     positive, except that a filter that ignores nothing does ignore polarity 2.
    /// \throws std::invalid_argument  "GridBasedClusterGenerator: null event pointer" or
    ///     "GridBasedClusterGenerator: event off the sensor", in hardened builds only: debug
    ///     builds, and builds with the CMake option `KELVORA_HARDENED`. Nothing changes.
    /// \throws std::out_of_range  "invalid unordered_map<K, T> key" if the filter type is not one
    ///     of the four, and no polarity is stored yet for this event type (see the note).
    ///
    /// \note The polarity to ignore is looked up once per event type and process, by the first grid
    /// generator that gets an event of this type. Every later grid generator uses it for this event
    /// type, regardless of its own filter. To use several filters in one program, filter the events
    /// before you feed them, and construct all grid generators with `POLARITY_FREE` or
    /// `POLARITY_SEPARATE`, which both ignore nothing.
    template <class Event>
    void processEvent(const Event* event);

    /// Counts several events. Does the same as `processEvent` for each of them, in
    /// about half the time.
    ///
    /// \param events  Array of `count` events. Null is ignored for any `count`.
    /// \param count  Number of events; 0 does nothing.
    /// \throws std::out_of_range  like `processEvent` for the first event; no
    ///     event is counted then.
    /// \throws std::invalid_argument  for an event off the sensor, in hardened builds only. The
    ///     events before it are counted.
    template <class Event>
    void processEvents(const Event* events, std::size_t count);

    /// Reports the clusters of the events since the previous call, and resets all counts. Allocates
    /// only to enlarge `clusters`, and for more regions of active cells than in any call before.
    ///
    /// Takes time linear in the number of cells and pixels. Takes time linear in the number of cells
    /// only, if all events since the previous call were passed to `processEvents`, there was at most
    /// one per 256 pixels of the sensor, and `getActiveMap` has never been called.
    ///
    /// \param timestamp  Stored in each cluster; otherwise unused.
    /// \param clusters  Emptied first. Ordered by the first cell of each cluster, rows from top to
    ///     bottom and columns from left to right.
    /// \note After an exception, `clusters` may hold some of the clusters. The events since the
    /// previous call then either count for the next call or are forgotten, and the generator can
    /// still be used.
    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& clusters);

    /// Sets all counters to 0. Takes time linear in the number of cells and pixels, or in the number
    /// of events if there were few; `generateClusters` has the conditions.
    /// \note Cells that are already marked active stay marked. The
    /// next `generateClusters` reports them.
    void reset();

    /// Makes `map` a view of the events counted per pixel since the last `generateClusters`. Later
    /// calls of `generateClusters` and `reset` clear the counts of all pixels, also counts that you
    /// have written to the map.
    ///
    /// \param map  Becomes a `CV_8UC1` matrix of sensor size; counts stop at 255. It owns no data:
    ///     it changes with every event, and must not be used after the generator is destroyed.
    void getActiveMap(cv::Mat& map);

private:
    class KELVORA_NO_EXPORT Impl;
    std::unique_ptr<Impl> impl;
};

extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(const Event2D*);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(
    const Event2DFrequency*);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(
    const Event2DPeriod<int>*);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(
    const Event2DPeriod<unsigned int>*);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(
    const Event2DPeriod<float>*);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(
    const Event2DPeriod<double>*);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(
    const Event2DPeriod<long long>*);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvent(
    const Event2DPeriod<unsigned long long>*);

extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(const Event2D*,
                                                                             std::size_t);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(
    const Event2DFrequency*, std::size_t);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(
    const Event2DPeriod<int>*, std::size_t);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(
    const Event2DPeriod<unsigned int>*, std::size_t);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(
    const Event2DPeriod<float>*, std::size_t);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(
    const Event2DPeriod<double>*, std::size_t);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(
    const Event2DPeriod<long long>*, std::size_t);
extern template KELVORA_EXPORT void GridBasedClusterGenerator::processEvents(
    const Event2DPeriod<unsigned long long>*, std::size_t);

}  // namespace kelvora
