// SPDX-License-Identifier: MIT
#include "sessions/settings_builder.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "sessions/methods.hpp"
#include "sessions/parameter_error.hpp"

namespace kelvora::tool {

namespace {

using Kind = ParameterError::Kind;

const Parameter& get(std::string_view keyword) {
    return *findParameter(keyword);
}

bool isInside(double number, const Range& range) {
    return std::isfinite(number) && number <= range.largest &&
           (range.is_open ? number > range.smallest : number >= range.smallest);
}

/// Whether an integer type has room for a number. NaN fits into none.
template <typename T>
bool fits(double number) {
    // A power of two is exact. The largest number of the type would be rounded up to it.
    const double end = std::ldexp(1.0, std::numeric_limits<T>::digits);
    return number >= static_cast<double>(std::numeric_limits<T>::min()) && number < end;
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
    if (std::is_integral_v<T> && (number != std::floor(number) || !fits<T>(number))) {
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
    void operator()(T* field) const {
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

}  // namespace

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
