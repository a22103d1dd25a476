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

/// Clusters events by counting them in the cells of a grid and joining neighbouring active cells.
///
/// Feed events with `processEvent`, then ask for the clusters of all events since the last call
/// with `generateClusters`. A cell becomes active when it has counted `activation_threshold`
/// events, and marks itself, its right, its lower and its lower right neighbour. Each 4-connected
/// group of marked cells is one cluster, reported as the box around it in pixels.
///
/// The result depends on nothing but the events and their order; their timestamps are not read.
/// Constant work per event, and one pass over the grid per `generateClusters`.
///
/// One thread at a time may use a generator; different generators are independent but for the note
/// at `processEvent`. Generators are neither copyable nor assignable.
class KELVORA_EXPORT GridBasedClusterGenerator {
public:
    /// \param sensor_width,sensor_height  Size of the sensor, pixels, at least 1.
    /// \param cell_width,cell_height  Size of a cell, pixels, at least 1. Cells at the right and
    ///     lower edge may reach beyond the sensor.
    /// \param max_cluster_size  Largest accepted width and height of a cluster, pixels.
    /// \param min_cluster_size  Smallest accepted width and height of a cluster, pixels. Sizes are
    ///     whole cells, measured before the box is clipped to the sensor.
    /// \param filter_type  Events to ignore. `POLARITY_SEPARATE` ignores none and counts the
    ///     polarities apart: a cell is active when each of the two has reached the threshold. Not
    ///     validated: an unknown value makes the first `processEvent` throw.
    /// \param count_pixel_once  Count at most one event per pixel between two `generateClusters`.
    /// \param activation_threshold  Events that make a cell active; with 0, one event is enough.
    /// \throws std::invalid_argument  if a cell or the sensor has a size below 1.
    /// \note The largest size comes before the smallest.
    GridBasedClusterGenerator(int sensor_width, int sensor_height, int cell_width, int cell_height,
                              int max_cluster_size, int min_cluster_size,
                              EventFilterType filter_type, bool count_pixel_once,
                              unsigned short activation_threshold);

    /// Invalidates the map that `getActiveMap` gave.
    virtual ~GridBasedClusterGenerator();

    /// Counts one event, unless the filter ignores it. Constant time, no allocation.
    ///
    /// \tparam Event  `Event2D`, `Event2DFrequency`, or `Event2DPeriod` of `int`, `unsigned int`,
    ///     `float`, `double`, `long long` or `unsigned long long`.
    /// \param event  Not null, and on the sensor: neither is checked (debug builds assert both).
    ///     Polarities other than 0 and 1 count as positive, but for 2: with a filter that ignores
    ///     nothing, that one is ignored.
    /// \throws std::out_of_range  "invalid unordered_map<K, T> key" if the filter type is not one
    ///     of the four, and no polarity is remembered yet for this event type (see the note).
    ///
    /// \note The ignored polarity is looked up once per event type and process, by the first grid
    /// generator that gets an event of that type; every later grid generator uses it for this event
    /// type, whatever filter it was constructed with. To use several filters in one program, filter
    /// the events before feeding them and construct all grid generators with `POLARITY_FREE` or
    /// `POLARITY_SEPARATE`, which both ignore nothing.
    template <class Event>
    void processEvent(const Event* event);

    /// Counts events, one after the other: the same as `processEvent` for each of them, in about half
    /// the time.
    ///
    /// \param events  `count` events in a row. Null is ignored, whatever `count` is.
    /// \param count  Number of events; 0 does nothing.
    /// \throws std::out_of_range  as `processEvent` for the first event; none is counted then.
    template <class Event>
    void processEvents(const Event* events, std::size_t count);

    /// Reports the clusters of the events since the last call, and starts counting afresh. Time is
    /// linear in the number of cells and pixels; allocates only to make `clusters` larger.
    ///
    /// \param timestamp  Stored in each cluster; otherwise unused.
    /// \param clusters  Emptied first. Ordered by the first cell of each cluster, rows from top to
    ///     bottom and columns from left to right.
    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& clusters);

    /// Sets all counters to 0, in time linear in the number of cells and pixels.
    /// \note Cells that are already marked active stay so, and are reported by the next
    /// `generateClusters`.
    void reset();

    /// Makes `map` a view of the events counted per pixel since the last `generateClusters`.
    ///
    /// \param map  Becomes a `CV_8UC1` matrix of sensor size; counts stop at 255. It owns no data:
    ///     it changes with every event, and must not be used after the generator is gone.
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
