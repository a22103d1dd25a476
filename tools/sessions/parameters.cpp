// SPDX-License-Identifier: MIT
#include "sessions/parameters.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <system_error>

#include "sessions/methods.hpp"
#include "sessions/parameter_error.hpp"

namespace kelvora::tool {

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr Range kAny{};
constexpr Range kPositive{0, kInfinity, true};
constexpr Range kNotNegative{0, kInfinity, false};
constexpr Range kAtLeastOne{1, kInfinity, false};
constexpr Range kSide{1, recording::kLargestSensorSide, false};
constexpr Range kPixels{0, std::numeric_limits<int>::max(), false};
constexpr Range kEvents{0, std::numeric_limits<unsigned short>::max(), false};
constexpr Range kDim{2, 3, false};
constexpr Range kJobs{-1, 255, false};
constexpr Range kMegabytes{1, 1e9, false};
// The clustering's constructor allocates a count per cluster.
constexpr Range kClusters{1, 1'000'000, false};

const std::vector<std::string> kPolarities = {"all", "on", "off", "separate"};
const std::vector<std::string> kPrecisions = {"float", "double"};

std::vector<std::string> methodNames() {
    std::vector<std::string> names;
    for (const Method& method : methods()) {
        names.push_back(method.name);
    }
    return names;
}

/// The number that a text consists of, if the type can hold it.
template <typename T>
std::optional<T> numberFrom(const std::string& text) {
    T number{};
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

// clang-format off
const std::vector<Parameter> kTable = {
    {Group::General, "window_us", "--window", "TIME", kAny,
     "Length of a window, with unit: us, ms or s; windows begin at multiples of it",
     [](Settings& all) -> Field { return &all.windows.window; }},
    {Group::General, "from_us", "--from", "TIME", kAny,
     "Ignore events before this time, counted from the first event, with unit",
     [](Settings& all) -> Field { return &all.windows.from; }},
    {Group::General, "to_us", "--to", "TIME", kAny,
     "Ignore events at or after this time, counted from the first event, with unit",
     [](Settings& all) -> Field { return &all.windows.to; }},
    {Group::General, "polarity", "--polarity", "", kAny,
     "Events to cluster; 'separate' uses all, but requires both polarities in a cell",
     [](Settings& all) -> Field { return &all.windows.polarity; }},
    {Group::General, "max_window_events", "--max-window-events", "EVENTS", kAtLeastOne,
     "Refuse a recording with more events in a window",
     [](Settings& all) -> Field { return &all.windows.max_window_events; },
     "as many as fit into --max-memory"},
    {Group::General, "max_memory", "--max-memory", "MB", kMegabytes,
     "Memory for the counts of the grid and the events of a window",
     [](Settings& all) -> Field { return &all.windows.max_memory; },
     "32, and 32 bytes per byte of the recording"},
    {Group::General, "method", "--method", "", kAny,
     "Clustering method",
     [](Settings& all) -> Field { return &all.method; }},

    {Group::Grid, "cell_width", "--cell-width", "PIXELS", kSide,
     "Width of a cell",
     [](Settings& all) -> Field { return &all.grid.cell_width; }},
    {Group::Grid, "cell_height", "--cell-height", "PIXELS", kSide,
     "Height of a cell",
     [](Settings& all) -> Field { return &all.grid.cell_height; }},
    {Group::Grid, "max_cluster_size", "--max-cluster-size", "PIXELS", kPixels,
     "Largest width and height of a cluster; clusters consist of whole cells",
     [](Settings& all) -> Field { return &all.grid.max_cluster_size; }},
    {Group::Grid, "min_cluster_size", "--min-cluster-size", "PIXELS", kPixels,
     "Smallest width and height of a cluster; clusters consist of whole cells, and a single active "
     "cell makes a cluster of two by two cells",
     [](Settings& all) -> Field { return &all.grid.min_cluster_size; }},
    {Group::Grid, "activation_threshold", "--activation-threshold", "EVENTS", kEvents,
     "Events in a window that make a cell active; with --polarity separate, of each polarity",
     [](Settings& all) -> Field { return &all.grid.activation_threshold; }},
    {Group::Grid, "count_every_event", "--count-every-event", "", kAny,
     "Count all events of a pixel, not only the first in a window (hot pixels then count fully)",
     [](Settings& all) -> Field { return &all.grid.count_every_event; }},

    {Group::Points, "dim", "--dim", "2|3", kDim,
     "2: cluster in the image plane; 3: in space and time",
     [](Settings& all) -> Field { return &all.point.dim; }},
    {Group::Points, "scale_x", "--scale-x", "FACTOR", kPositive,
     "Scaled units per pixel column",
     [](Settings& all) -> Field { return &all.point.scale_x; }},
    {Group::Points, "scale_y", "--scale-y", "FACTOR", kPositive,
     "Scaled units per pixel row",
     [](Settings& all) -> Field { return &all.point.scale_y; }},
    {Group::Points, "us_per_pixel", "--us-per-pixel", "US", kPositive,
     "Microseconds that count as much as one pixel in three dimensions",
     [](Settings& all) -> Field { return &all.point.us_per_pixel; }},
    {Group::Points, "scale_time", "--scale-time", "FACTOR", kPositive,
     "Scaled units per microsecond, instead of microseconds per pixel",
     [](Settings& all) -> Field { return &all.point.scale_time; }},
    {Group::Points, "capacity", "--capacity", "EVENTS", kAtLeastOne,
     "Maximum number of events to cluster; the newest are kept",
     [](Settings& all) -> Field { return &all.point.capacity; }},
    {Group::Points, "time_length_us", "--time-length", "TIME", kAny,
     "Window of the event counter, with unit; it discards old events only at gaps of at least a "
     "hundredth of it",
     [](Settings& all) -> Field { return &all.point.time_length; }, "all"},
    {Group::Points, "precision", "--precision", "", kAny,
     "Floating-point type of the computation",
     [](Settings& all) -> Field { return &all.point.precision; }},
    {Group::Points, "keep_zero_boxes", "--keep-zero-boxes", "", kAny,
     "Report a cluster in a single row or column of pixels as the box 0,0,0,0, as the library "
     "does, not as a box one pixel wide or high",
     [](Settings& all) -> Field { return &all.point.keep_zero_boxes; }},

    {Group::Density, "eps", "--eps", "UNITS", kPositive,
     "Radius of a neighbourhood, scaled units; points at exactly this distance lie outside",
     [](Settings& all) -> Field { return &all.density.eps; }},
    {Group::Density, "min_pts", "--min-pts", "EVENTS", kAtLeastOne,
     "Number of events that make a neighbourhood dense",
     [](Settings& all) -> Field { return &all.density.min_pts; }},
    {Group::Density, "jobs", "--jobs", "THREADS", kJobs,
     "Number of threads; 0: depends on the number of events, -1: one per processor. With two or "
     "more, a core point needs one more neighbour, and border points join clusters, so results "
     "differ from one thread",
     [](Settings& all) -> Field { return &all.density.jobs; }},

    {Group::Centroid, "k", "--clusters", "NUMBER", kClusters,
     "Number of clusters in a window; required",
     [](Settings& all) -> Field { return &all.centroid.clusters; }},
    {Group::Centroid, "max_iter", "--max-iter", "NUMBER", kAtLeastOne,
     "Maximum number of iterations",
     [](Settings& all) -> Field { return &all.centroid.max_iter; }},
    {Group::Centroid, "tol", "--tol", "UNITS", kPositive,
     "Stop when the sum of squared distances changes by less, squared scaled units",
     [](Settings& all) -> Field { return &all.centroid.tol; }},

    {Group::Tracking, "tracking", "--track", "", kAny,
     "Track objects from window to window: adds the columns track_id,vx,vy,state, and rows for "
     "objects hidden in other clusters",
     [](Settings& all) -> Field { return &all.track.is_wanted; }},
    {Group::Tracking, "max_distance", "--max-distance", "PIXELS", kNotNegative,
     "Largest distance between a cluster and the predicted position of its track",
     [](Settings& all) -> Field { return &all.track.max_distance; }},
    {Group::Tracking, "max_size_change", "--max-size-change", "PIXELS", kNotNegative,
     "Largest difference in width, and in height, between a cluster and its track",
     [](Settings& all) -> Field { return &all.track.max_size_change; }},
    {Group::Tracking, "max_missed", "--max-missed", "WINDOWS", kNotNegative,
     "Number of windows that a track survives without a cluster",
     [](Settings& all) -> Field { return &all.track.max_missed; }},
    {Group::Tracking, "min_hits", "--min-hits", "WINDOWS", kAtLeastOne,
     "Number of windows with a cluster after which a track is confirmed",
     [](Settings& all) -> Field { return &all.track.min_hits; }},
};
// clang-format on

/// The default of a setting as text.
struct DefaultText {
    template <typename T>
    std::string operator()(const T* field) const {
        return fmt::format("{}", *field);
    }

    std::string operator()(const unsigned long long* field) const {
        if (*field == 0) {
            return "";
        }
        return *field == PointSettings::kUnbounded ? "all" : fmt::format("{}", *field);
    }

    template <typename T>
    std::string operator()(const std::optional<T>*) const {
        return "";
    }

    std::string operator()(const bool*) const { return ""; }
    std::string operator()(const Duration* field) const { return toString(*field); }
    std::string operator()(const Polarity* field) const {
        return kPolarities[static_cast<std::size_t>(*field)];
    }
    std::string operator()(const Precision* field) const {
        return kPrecisions[static_cast<std::size_t>(*field)];
    }
    std::string operator()(const std::string* field) const { return *field; }
};

}  // namespace

const char* titleOf(Group group) {
    switch (group) {
        case Group::General:
            return "General";
        case Group::Grid:
            return "Grid method";
        case Group::Points:
            return "Density and centroid methods";
        case Group::Density:
            return "Density method";
        case Group::Centroid:
            return "Centroid method";
        case Group::Tracking:
            return "Tracking";
    }
    return "";
}

std::string Parameter::defaultText() const {
    Settings settings;
    return default_text != nullptr ? default_text : std::visit(DefaultText(), field(settings));
}

std::vector<std::string> Parameter::words() const {
    if (holds<std::string>()) {
        return methodNames();
    }
    if (holds<Polarity>()) {
        return kPolarities;
    }
    return holds<Precision>() ? kPrecisions : std::vector<std::string>();
}

Value Parameter::parse(const std::string& text) const {
    if (isDuration()) {
        try {
            return static_cast<std::int64_t>(durationFromString(text).microseconds);
        } catch (const std::invalid_argument& error) {
            throw ParameterError{ParameterError::Kind::Text, this, error.what()};
        }
    }
    if (const auto whole = numberFrom<std::int64_t>(text)) {
        return *whole;
    }
    if (const auto real = numberFrom<double>(text)) {
        return *real;
    }
    return text;
}

const std::vector<Parameter>& parameterTable() {
    return kTable;
}

const Parameter* findParameter(std::string_view keyword) {
    const auto found = std::find_if(kTable.begin(), kTable.end(), [keyword](const Parameter& row) {
        return row.keyword == keyword;
    });
    return found == kTable.end() ? nullptr : &*found;
}

}  // namespace kelvora::tool
