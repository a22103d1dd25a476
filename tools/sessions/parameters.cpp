// SPDX-License-Identifier: MIT
#include "sessions/parameters.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <type_traits>

#include "sessions/methods.hpp"
#include "sessions/suggestion.hpp"

namespace kelvora::tool {

namespace {

using Kind = ParameterError::Kind;

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

// clang-format off
const std::vector<Parameter> kTable = {
    {Group::General, "window_us", "--window", "TIME", kAny,
     "Length of a window in event time, with its unit: us, ms or s. Windows begin at multiples of "
     "it",
     [](Settings& all) -> Field { return &all.windows.window; }},
    {Group::General, "from_us", "--from", "TIME", kAny,
     "Ignore events before this time, counted from the first event, with unit",
     [](Settings& all) -> Field { return &all.windows.from; }},
    {Group::General, "to_us", "--to", "TIME", kAny,
     "Ignore events from this time on, counted from the first event, with unit",
     [](Settings& all) -> Field { return &all.windows.to; }},
    {Group::General, "polarity", "--polarity", "", kAny,
     "Events to cluster; 'separate' uses all, but requires both polarities in a cell",
     [](Settings& all) -> Field { return &all.windows.polarity; }},
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
     "Largest width and height of a cluster, in whole cells",
     [](Settings& all) -> Field { return &all.grid.max_cluster_size; }},
    {Group::Grid, "min_cluster_size", "--min-cluster-size", "PIXELS", kPixels,
     "Smallest width and height of a cluster, in whole cells; a single active cell makes a "
     "cluster of two by two",
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
     "The same as scaled units per microsecond",
     [](Settings& all) -> Field { return &all.point.scale_time; }},
    {Group::Points, "capacity", "--capacity", "EVENTS", kAtLeastOne,
     "Maximum number of events to cluster; the newest are kept",
     [](Settings& all) -> Field { return &all.point.capacity; }},
    {Group::Points, "time_length_us", "--time-length", "TIME", kAny,
     "Window of the event counter, with unit: forgets events only across gaps longer than a "
     "hundredth of it",
     [](Settings& all) -> Field { return &all.point.time_length; }},
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
     "Number of threads; 0: chosen by the number of events, -1: all. Two or more count a core "
     "point differently (one neighbour more) and let border points join groups, so results "
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
     "Largest difference between a cluster and the usual width and height of its track",
     [](Settings& all) -> Field { return &all.track.max_size_change; }},
    {Group::Tracking, "max_missed", "--max-missed", "WINDOWS", kNotNegative,
     "Number of windows that a track survives without a cluster",
     [](Settings& all) -> Field { return &all.track.max_missed; }},
    {Group::Tracking, "min_hits", "--min-hits", "WINDOWS", kAtLeastOne,
     "Number of windows with a cluster that confirm a track",
     [](Settings& all) -> Field { return &all.track.min_hits; }},
};
// clang-format on

template <typename T>
constexpr bool isNumber = std::is_arithmetic_v<T> && !std::is_same_v<T, bool>;

const Parameter& get(std::string_view keyword) {
    return *findParameter(keyword);
}

bool isInside(double number, const Range& range) {
    return std::isfinite(number) && number <= range.largest &&
           (range.is_open ? number > range.smallest : number >= range.smallest);
}

/// The number that a value states, if the type of the setting can hold it.
template <typename T>
std::optional<T> numberFrom(const Value& value, const Range& range) {
    double number = std::numeric_limits<double>::quiet_NaN();
    if (const auto* whole = std::get_if<std::int64_t>(&value)) {
        number = static_cast<double>(*whole);
    } else if (const auto* real = std::get_if<double>(&value)) {
        number = *real;
    }
    const bool is_whole = number == std::floor(number);
    if (std::is_integral_v<T> &&
        (!is_whole || !(number <= static_cast<double>(std::numeric_limits<T>::max())) ||
         number < static_cast<double>(std::numeric_limits<T>::min()))) {
        return std::nullopt;
    }
    if (!isInside(number, range) || !isInside(static_cast<double>(static_cast<T>(number)), range)) {
        return std::nullopt;
    }
    return static_cast<T>(number);
}

std::string textOf(const Value& value) {
    return std::visit([](const auto& one) { return fmt::format("{}", one); }, value);
}

/// Stores a value in a setting.
class Assignment {
public:
    Assignment(const Parameter& parameter_, const Value& value_)
        : parameter(parameter_), value(value_) {}

    template <typename T>
    std::enable_if_t<isNumber<T>> operator()(T* field) const {
        const auto number = numberFrom<T>(value, parameter.range);
        if (!number) {
            refuse(Kind::Number);
        }
        *field = *number;
    }

    template <typename T>
    void operator()(std::optional<T>* field) const {
        T inner{};
        (*this)(&inner);
        *field = inner;
    }

    void operator()(bool* field) const {
        if (!std::holds_alternative<bool>(value)) {
            refuse(Kind::Number);
        }
        *field = std::get<bool>(value);
    }

    void operator()(Duration* field) const {
        const auto* const microseconds = std::get_if<std::int64_t>(&value);
        if (microseconds == nullptr || *microseconds < 0 ||
            static_cast<std::uint64_t>(*microseconds) > Duration::kLongest) {
            refuse(Kind::Number);
        }
        field->microseconds = static_cast<std::uint64_t>(*microseconds);
    }

    void operator()(Polarity* field) const { *field = static_cast<Polarity>(word()); }
    void operator()(Precision* field) const { *field = static_cast<Precision>(word()); }
    void operator()(std::string* field) const { *field = parameter.words()[word()]; }

private:
    [[noreturn]] void refuse(Kind kind) const {
        throw ParameterError{kind, &parameter, textOf(value)};
    }

    /// Index of the value among the accepted words.
    std::size_t word() const {
        const std::vector<std::string> words = parameter.words();
        const auto found = std::find(words.begin(), words.end(), textOf(value));
        if (found == words.end()) {
            refuse(Kind::Word);
        }
        return static_cast<std::size_t>(found - words.begin());
    }

    const Parameter& parameter;
    const Value& value;
};

/// The default of a setting as text.
struct DefaultText {
    template <typename T>
    std::enable_if_t<isNumber<T>, std::string> operator()(const T* field) const {
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

/// A value of the type of the parameter's setting. Only its type matters.
template <typename... Types>
bool holds(const Parameter& parameter) {
    Settings settings;
    const Field field = parameter.field(settings);
    return (std::holds_alternative<Types>(field) || ...);
}

std::string ruleOf(const Parameter& parameter) {
    if (parameter.isFlag()) {
        return "true or false";
    }
    if (parameter.isDuration()) {
        return fmt::format("a whole number from 0 to {}", Duration::kLongest);
    }
    const bool is_real = holds<float*, double*, std::optional<float>*>(parameter);
    const std::string kind = is_real ? "a number" : "a whole number";
    const Range& range = parameter.range;
    if (range.is_open) {
        return fmt::format("{} larger than {}", kind, range.smallest);
    }
    if (std::isfinite(range.largest)) {
        return fmt::format("{} from {:.0f} to {:.0f}", kind, range.smallest, range.largest);
    }
    return fmt::format("{} of at least {}", kind, range.smallest);
}

std::string wrongWord(const ParameterError& error) {
    const std::vector<std::string> words = error.parameter->words();
    const bool is_method = holds<std::string*>(*error.parameter);
    return fmt::format(
        "must be one of '{}', not '{}'{}", fmt::join(words, "', '"), error.value,
        is_method ? suggestedMethod(error.value) : suggestionFor(error.value, words));
}

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
    if (std::string_view(keyword) == "from_us") {
        return "0s";
    }
    if (std::string_view(keyword) == "time_length_us") {
        return "all";
    }
    return std::visit(DefaultText(), field(settings));
}

std::vector<std::string> Parameter::words() const {
    if (holds<std::string*>(*this)) {
        return methodNames();
    }
    if (holds<Polarity*>(*this)) {
        return kPolarities;
    }
    return holds<Precision*>(*this) ? kPrecisions : std::vector<std::string>();
}

bool Parameter::isFlag() const {
    return holds<bool*>(*this);
}

bool Parameter::isDuration() const {
    return holds<Duration*, std::optional<Duration>*>(*this);
}

Value Parameter::parse(const std::string& text) const {
    if (isDuration()) {
        try {
            return static_cast<std::int64_t>(durationFromString(text).microseconds);
        } catch (const std::invalid_argument& error) {
            throw ParameterError{Kind::Text, this, error.what()};
        }
    }
    const char* const end = text.data() + text.size();
    std::int64_t whole = 0;
    if (std::from_chars(text.data(), end, whole).ptr == end && !text.empty()) {
        return whole;
    }
    double real = 0.0;
    if (std::from_chars(text.data(), end, real).ptr == end && !text.empty()) {
        return real;
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

std::string describe(const ParameterError& error, const Wording& wording) {
    const auto other = [&] { return wording.name(*error.other); };
    const auto with = [&] { return wording.setting(*error.other, error.value); };
    switch (error.kind) {
        case Kind::Text:
            return error.value;
        case Kind::Number:
            return fmt::format("must be {}, not '{}'", ruleOf(*error.parameter), error.value);
        case Kind::Word:
            return wrongWord(error);
        case Kind::Required:
            return "is required with " + with();
        case Kind::NotUsed:
            return "is not used with " + with();
        case Kind::Needs:
            return "needs " + with();
        case Kind::OnlyWith:
            return error.own + " needs " + with();
        case Kind::Excludes:
            return "excludes " + other();
        case Kind::After:
            return "must be later than " + other();
        case Kind::AtMost:
            return "must be at most " + other();
        case Kind::TooLong:
            return fmt::format("must be at most {} with {}", error.own, with());
        case Kind::IsZero:
            return "must be longer than 0";
    }
    return {};
}

void SettingsBuilder::set(const Parameter& parameter, const Value& value) {
    std::visit(Assignment(parameter, value), parameter.field(settings));
    if (value != Value(false)) {
        given.insert(&parameter);
    }
}

bool SettingsBuilder::isGiven(std::string_view keyword) const {
    return given.count(findParameter(keyword)) > 0;
}

void SettingsBuilder::check() const {
    checkMethod();
    checkWindows();
    if (methodOf(settings.method).uses(Group::Points)) {
        checkPoints();
    }
    checkTracking();
}

void SettingsBuilder::checkMethod() const {
    const Method& method = methodOf(settings.method);
    for (const Parameter* parameter : given) {
        const Group group = parameter->group;
        if (group != Group::General && group != Group::Tracking && !method.uses(group)) {
            throw ParameterError{Kind::NotUsed, parameter, settings.method, &get("method")};
        }
    }
    if (method.uses(Group::Centroid) && settings.centroid.clusters == 0) {
        throw ParameterError{Kind::Required, &get("k"), settings.method, &get("method")};
    }
    if (!method.uses(Group::Grid) && settings.windows.polarity == Polarity::Separate) {
        throw ParameterError{Kind::OnlyWith, &get("polarity"), "grid", &get("method"), "separate"};
    }
    if (settings.grid.min_cluster_size > settings.grid.max_cluster_size) {
        throw ParameterError{Kind::AtMost, &get("min_cluster_size"), "", &get("max_cluster_size")};
    }
}

void SettingsBuilder::checkWindows() const {
    const WindowSettings& windows = settings.windows;
    if (windows.window.microseconds == 0) {
        throw ParameterError{Kind::IsZero, &get("window_us")};
    }
    if (windows.to && windows.to->microseconds <= windows.from.microseconds) {
        throw ParameterError{Kind::After, &get("to_us"), "", &get("from_us")};
    }
}

void SettingsBuilder::checkPoints() const {
    const PointSettings& point = settings.point;
    if (point.time_length && point.time_length->microseconds == 0) {
        throw ParameterError{Kind::IsZero, &get("time_length_us")};
    }
    if (isGiven("scale_time") && isGiven("us_per_pixel")) {
        throw ParameterError{Kind::Excludes, &get("scale_time"), "", &get("us_per_pixel")};
    }
    if (point.dim == 3 && settings.windows.window.microseconds > kLongestWindowIn3d.microseconds) {
        throw ParameterError{Kind::TooLong, &get("window_us"), "3", &get("dim"),
                             toString(kLongestWindowIn3d)};
    }
    for (const char* const keyword : {"us_per_pixel", "scale_time"}) {
        if (point.dim == 2 && isGiven(keyword)) {
            throw ParameterError{Kind::Needs, &get(keyword), "3", &get("dim")};
        }
    }
}

void SettingsBuilder::checkTracking() const {
    for (const Parameter* parameter : given) {
        if (parameter->group == Group::Tracking && !settings.track.is_wanted) {
            throw ParameterError{Kind::Needs, parameter, "", &get("tracking")};
        }
    }
}

}  // namespace kelvora::tool
