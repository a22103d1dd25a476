// SPDX-License-Identifier: MIT
#include "kelvora/grid_based_cluster_generator.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <stdexcept>

#include "events/rejected_polarity.hpp"
#include "exclusive_use.hpp"
#include "generators/active_cells.hpp"
#include "generators/cell_counters.hpp"
#include "generators/cell_table.hpp"
#include "generators/cluster_generator_base.hpp"
#include "generators/noted_pixels.hpp"

namespace kelvora {

namespace {

/// No decision yet on the rejected polarity.
constexpr std::uint8_t kUndecided = 255;

/// Noting the pixel of an event, and clearing its counts, takes about as long as clearing the counts
/// of 140 pixels in a row. So noting pays off up to one event in about so many pixels.
constexpr std::size_t kPixelsPerNotedEvent = 256;

constexpr std::uint8_t kNone = 0;
constexpr std::uint8_t kOne = 1;
constexpr std::uint8_t kMost = 255;

std::size_t product(int a, int b) {
    return static_cast<std::size_t>(a) * static_cast<std::size_t>(b);
}

}  // namespace

class GridBasedClusterGenerator::Impl : public ClusterGeneratorBase {
public:
    Impl(int sensor_width_, int sensor_height_, int cell_width_, int cell_height_,
         int max_cluster_size_, int min_cluster_size_, EventFilterType filter_type_,
         bool count_pixel_once_, unsigned short activation_threshold_);

    template <class Event>
    void processEvent(const Event& event);

    template <class Event>
    void processEvents(const Event* events, std::size_t count);

    void generateClusters(std::size_t timestamp, std::vector<ClusterGeometry>& clusters) override;

    void reset() override;

    cv::Mat activeMap();

private:
    template <class Event>
    static std::atomic<std::uint8_t>& rejectedPolarityOf();

    template <class Event>
    [[gnu::noinline]] void decideOnRejectedPolarity();

    template <class Event>
    [[gnu::noinline]] void processFirstEvent(const Event& event);

    template <class Event>
    [[gnu::noinline]] void processUnnotedEvent(const Event& event);

    void stopNoting();
    void clearNotedPixels();

    template <class Event, bool kIsSeparate, bool kIsPixelOnce>
    void processBatch(const Event* event, const Event* end);

    template <class Event, bool kIsSeparate, bool kIsPixelOnce>
    [[gnu::noinline]] const Event* countUntilActivation(const Event* event, const Event* end) const;

    void reportRegion(const CellRegion& region, std::size_t timestamp,
                      std::vector<ClusterGeometry>& clusters) const;

    int cell_width;
    int cell_height;
    int cell_rows;
    int cell_cols;
    int max_cluster_size;
    int min_cluster_size;
    EventFilterType filter_type;
    bool count_pixel_once;
    std::uint16_t activation_threshold;
    std::vector<std::uint16_t> cell_counts;  ///< One or two counters per cell; they wrap.
    std::vector<std::uint8_t> pixel_counts;  ///< One counter per pixel; they saturate.
    ActiveCells active_cells;
    std::vector<CellNumber> column_to_cell;
    std::vector<CellNumber> row_to_cell;
    EventCounting counting;
    EventCounting single_counting;  ///< For single events: paused as long as pixels are noted.
    NotedPixels noted_pixels;
    bool is_map_shared = false;  ///< Whether the caller may write to `pixel_counts`.
    std::vector<CellRegion>
        regions;  ///< Used by `generateClusters` only; kept to reuse its memory.

public:
    ExclusiveUse exclusive_use;  ///< Held by every call.
};

GridBasedClusterGenerator::Impl::Impl(int sensor_width_, int sensor_height_, int cell_width_,
                                      int cell_height_, int max_cluster_size_,
                                      int min_cluster_size_, EventFilterType filter_type_,
                                      bool count_pixel_once_, unsigned short activation_threshold_)
    : ClusterGeneratorBase(sensor_width_, sensor_height_),
      cell_width(cell_width_),
      cell_height(cell_height_),
      cell_rows(cellCount(sensor_height, cell_height)),
      cell_cols(cellCount(sensor_width, cell_width)),
      max_cluster_size(max_cluster_size_),
      min_cluster_size(min_cluster_size_),
      filter_type(filter_type_),
      count_pixel_once(count_pixel_once_),
      activation_threshold(activation_threshold_) {
    if (cell_rows < 1 || cell_cols < 1) {
        throw std::invalid_argument("Invalid cell size or sensor size");
    }
    const std::size_t positive_offset = filter_type == POLARITY_SEPARATE ? 1 : 0;
    pixel_counts.resize(product(sensor_width, sensor_height));
    cell_counts.resize(product(cell_rows, cell_cols) << positive_offset);
    const CellCounters counters = {cell_counts.data(), static_cast<std::size_t>(cell_cols),
                                   positive_offset};
    counting.add_to_pixel = {pixel_counts.data(), static_cast<std::size_t>(sensor_width),
                             count_pixel_once ? kOne : kMost, count_pixel_once ? kNone : kOne};
    counting.add_to_cell = {counters, std::max<std::uint16_t>(activation_threshold, 1)};
    counting.is_cell_active = {counters, activation_threshold};
    single_counting = counting.paused();
    active_cells = ActiveCells(cell_rows, cell_cols);
    column_to_cell = cellOfPixel(sensor_width, cell_width);
    row_to_cell = cellOfPixel(sensor_height, cell_height);
    noted_pixels = NotedPixels(pixel_counts.size() / kPixelsPerNotedEvent);
}

/// Deliberately one value per event type for the whole process: see the note in the header.
/// Initialising it from `filter_type` would cost a fifth of the time of every event, because of the
/// registers that the call needs.
template <class Event>
std::atomic<std::uint8_t>& GridBasedClusterGenerator::Impl::rejectedPolarityOf() {
    static std::atomic<std::uint8_t> rejected_polarity{kUndecided};
    return rejected_polarity;
}

/// Sets the rejected polarity for all events of this type, unless another thread has just done so.
template <class Event>
void GridBasedClusterGenerator::Impl::decideOnRejectedPolarity() {
    std::uint8_t undecided = kUndecided;
    rejectedPolarityOf<Event>().compare_exchange_strong(undecided, rejectedPolarity(filter_type));
}

template <class Event>
void GridBasedClusterGenerator::Impl::processEvent(const Event& event) {
    const std::uint8_t rejected = rejectedPolarityOf<Event>().load(std::memory_order_relaxed);
    const auto polarity = static_cast<std::uint8_t>(event.polarity);
    if (rejected == kUndecided) {
        return processFirstEvent(event);
    }
    if (polarity == rejected) {
        return;
    }
    const std::size_t row = row_to_cell[event.y];
    const std::size_t col = column_to_cell[event.x];
    requireOnSensor(row, col);
    const EventCounting& steps = single_counting;
    // A cell becomes active only when a counter reaches the threshold. This is rare, so the branch
    // is well predicted. A cell that stays active needs no second mark, because marks are cleared
    // only together with the counters.
    if (!steps.add_to_cell(row, col, polarity != 0, steps.add_to_pixel(event.x, event.y))) {
        return;
    }
    if (steps.is_cell_active(row, col)) {
        active_cells.markBlock(row, col);
    } else if (steps.isPaused()) {
        processUnnotedEvent(event);
    }
}

/// Processes a single event while pixels are noted. It has not been counted yet.
template <class Event>
void GridBasedClusterGenerator::Impl::processUnnotedEvent(const Event& event) {
    stopNoting();
    processEvent(event);
}

template <class Event>
void GridBasedClusterGenerator::Impl::processFirstEvent(const Event& event) {
    decideOnRejectedPolarity<Event>();
    processEvent(event);
}

template <class Event>
void GridBasedClusterGenerator::Impl::processEvents(const Event* events, std::size_t count) {
    if (events == nullptr || count == 0) {
        return;
    }
    if (rejectedPolarityOf<Event>().load(std::memory_order_relaxed) == kUndecided) {
        decideOnRejectedPolarity<Event>();
    }
    noted_pixels.note(events, count);
    const Event* const end = events + count;
    const bool is_separate = filter_type == POLARITY_SEPARATE;
    if (is_separate && count_pixel_once) {
        processBatch<Event, true, true>(events, end);
    } else if (is_separate) {
        processBatch<Event, true, false>(events, end);
    } else if (count_pixel_once) {
        processBatch<Event, false, true>(events, end);
    } else {
        processBatch<Event, false, false>(events, end);
    }
}

/// Counts all events of a batch, for one mode of counting.
template <class Event, bool kIsSeparate, bool kIsPixelOnce>
void GridBasedClusterGenerator::Impl::processBatch(const Event* event, const Event* end) {
    for (;;) {
        event = countUntilActivation<Event, kIsSeparate, kIsPixelOnce>(event, end);
        if (event == end) {
            return;
        }
        active_cells.markBlock(row_to_cell[event->y], column_to_cell[event->x]);
        ++event;
    }
}

/// Counts events up to the first that makes its cell active.
///
/// Calls no other function, so that everything stays in registers. The compiler knows the mode, and
/// leaves out unneeded work.
///
/// \returns this event, which is counted too, or `end`.
template <class Event, bool kIsSeparate, bool kIsPixelOnce>
const Event* GridBasedClusterGenerator::Impl::countUntilActivation(const Event* event,
                                                                   const Event* end) const {
    const std::uint8_t rejected = rejectedPolarityOf<Event>().load(std::memory_order_relaxed);
    const CellNumber* const row_to_cell_of = row_to_cell.data();
    const CellNumber* const column_to_cell_of = column_to_cell.data();
    AddToCell add_to = counting.add_to_cell;
    add_to.counters.positive_offset = kIsSeparate ? 1 : 0;
    const IsCellActive is_active = {add_to.counters, activation_threshold};
    AddToPixel add_pixel = counting.add_to_pixel;
    add_pixel.largest_count = kIsPixelOnce ? kOne : kMost;
    add_pixel.repeated = kIsPixelOnce ? kNone : kOne;
    for (; event != end; ++event) {
        const auto polarity = static_cast<std::uint8_t>(event->polarity);
        if (polarity == rejected) {
            continue;
        }
        const std::size_t row = row_to_cell_of[event->y];
        const std::size_t col = column_to_cell_of[event->x];
        requireOnSensor(row, col);
        // A cell with one counter is active when this has reached the threshold.
        if (add_to(row, col, polarity != 0, add_pixel(event->x, event->y)) &&
            (!kIsSeparate || is_active(row, col))) {
            break;
        }
    }
    return event;
}

void GridBasedClusterGenerator::Impl::generateClusters(std::size_t timestamp,
                                                       std::vector<ClusterGeometry>& clusters) {
    clusters.clear();
    active_cells.takeRegions(regions);
    // Before the results are stored, which may fail: otherwise the marks would be cleared, but not
    // the counters.
    reset();
    for (const CellRegion& region : regions) {
        reportRegion(region, timestamp, clusters);
    }
}

/// Appends the box around a region, clipped to the sensor, unless it is too small or too large
/// before clipping.
void GridBasedClusterGenerator::Impl::reportRegion(const CellRegion& region, std::size_t timestamp,
                                                   std::vector<ClusterGeometry>& clusters) const {
    const int x = region.min_col * cell_width;
    const int y = region.min_row * cell_height;
    // In 64 bits, because the last cell may extend beyond the largest int.
    const std::int64_t width = std::int64_t{region.cols_spanned} * cell_width;
    const std::int64_t height = std::int64_t{region.rows_spanned} * cell_height;
    const auto [smallest, largest] = std::minmax(width, height);
    if (smallest < min_cluster_size || largest > max_cluster_size) {
        return;
    }
    clusters.emplace_back(static_cast<float>(x), static_cast<float>(y),
                          static_cast<float>(std::min<std::int64_t>(width, sensor_width - x)),
                          static_cast<float>(std::min<std::int64_t>(height, sensor_height - y)),
                          timestamp);
}

void GridBasedClusterGenerator::Impl::reset() {
    if (noted_pixels.areAllNoted()) {
        clearNotedPixels();
    } else {
        std::fill(pixel_counts.begin(), pixel_counts.end(), std::uint8_t{0});
        std::fill(cell_counts.begin(), cell_counts.end(), std::uint16_t{0});
    }
    if (!is_map_shared) {
        noted_pixels.reset();
        single_counting = counting.paused();
    }
}

/// Until the next reset, counts single events, whose pixels are not noted.
void GridBasedClusterGenerator::Impl::stopNoting() {
    noted_pixels.giveUp();
    single_counting = counting;
}

/// From now on, the caller may write any counts to the map, which each reset must clear.
cv::Mat GridBasedClusterGenerator::Impl::activeMap() {
    is_map_shared = true;
    stopNoting();
    return {sensor_height, sensor_width, CV_8UC1, pixel_counts.data()};
}

/// Sets the counts of the noted pixels and of their cells to 0. All others are 0 already.
void GridBasedClusterGenerator::Impl::clearNotedPixels() {
    for (const NotedPixels::Pixel pixel : noted_pixels) {
        // An event that the filter ignored may be off the sensor.
        if (pixel.x < sensor_width && pixel.y < sensor_height) {
            counting.add_to_cell.counters.clear(row_to_cell[pixel.y], column_to_cell[pixel.x]);
            pixel_counts[pixel.y * static_cast<std::size_t>(sensor_width) + pixel.x] = 0;
        }
    }
}

GridBasedClusterGenerator::GridBasedClusterGenerator(int sensor_width, int sensor_height,
                                                     int cell_width, int cell_height,
                                                     int max_cluster_size, int min_cluster_size,
                                                     EventFilterType filter_type,
                                                     bool count_pixel_once,
                                                     unsigned short activation_threshold)
    : impl(std::make_unique<Impl>(sensor_width, sensor_height, cell_width, cell_height,
                                  max_cluster_size, min_cluster_size, filter_type, count_pixel_once,
                                  activation_threshold)) {}

GridBasedClusterGenerator::GridBasedClusterGenerator(
    int sensor_width, int sensor_height, const GridBasedClusterGeneratorOptions& options)
    : GridBasedClusterGenerator(sensor_width, sensor_height, options.cell_width,
                                options.cell_height, options.max_cluster_size,
                                options.min_cluster_size, options.filter_type,
                                options.count_pixel_once, options.activation_threshold) {}

GridBasedClusterGenerator::~GridBasedClusterGenerator() = default;

template <class Event>
void GridBasedClusterGenerator::processEvent(const Event* event) {
    if (kIsHardened && event == nullptr) {
        refuseEvent("GridBasedClusterGenerator: null event pointer");
    }
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->processEvent(*event);
}

template <class Event>
void GridBasedClusterGenerator::processEvents(const Event* events, std::size_t count) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->processEvents(events, count);
}

void GridBasedClusterGenerator::generateClusters(std::size_t timestamp,
                                                 std::vector<ClusterGeometry>& clusters) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->generateClusters(timestamp, clusters);
}

void GridBasedClusterGenerator::reset() {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    impl->reset();
}

void GridBasedClusterGenerator::getActiveMap(cv::Mat& map) {
    const ExclusiveUse::Scope scope(impl->exclusive_use);
    map = impl->activeMap();
}

template void GridBasedClusterGenerator::processEvent(const Event2D*);
template void GridBasedClusterGenerator::processEvent(const Event2DFrequency*);
template void GridBasedClusterGenerator::processEvent(const Event2DPeriod<int>*);
template void GridBasedClusterGenerator::processEvent(const Event2DPeriod<unsigned int>*);
template void GridBasedClusterGenerator::processEvent(const Event2DPeriod<float>*);
template void GridBasedClusterGenerator::processEvent(const Event2DPeriod<double>*);
template void GridBasedClusterGenerator::processEvent(const Event2DPeriod<long long>*);
template void GridBasedClusterGenerator::processEvent(const Event2DPeriod<unsigned long long>*);
template void GridBasedClusterGenerator::processEvents(const Event2D*, std::size_t);
template void GridBasedClusterGenerator::processEvents(const Event2DFrequency*, std::size_t);
template void GridBasedClusterGenerator::processEvents(const Event2DPeriod<int>*, std::size_t);
template void GridBasedClusterGenerator::processEvents(const Event2DPeriod<unsigned int>*,
                                                       std::size_t);
template void GridBasedClusterGenerator::processEvents(const Event2DPeriod<float>*, std::size_t);
template void GridBasedClusterGenerator::processEvents(const Event2DPeriod<double>*, std::size_t);
template void GridBasedClusterGenerator::processEvents(const Event2DPeriod<long long>*,
                                                       std::size_t);
template void GridBasedClusterGenerator::processEvents(const Event2DPeriod<unsigned long long>*,
                                                       std::size_t);

}  // namespace kelvora
