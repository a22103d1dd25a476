// SPDX-License-Identifier: MIT
#include "event_loader.hpp"

#include <fmt/format.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <type_traits>

namespace kelvora::python {

namespace {

using recording::TimeUnit;

/// Represents all positions off the sensor.
constexpr std::uint32_t kOffSensor = 65536;

constexpr std::uint64_t kLatestTime = std::numeric_limits<std::int64_t>::max();

/// Largest time in microseconds at which `float` can distinguish times a millisecond apart: 2.4
/// hours. Times since 1970 would be rounded to minutes.
constexpr double kLatestFloatTime = 8'589'934'592.0;

template <typename T>
T valueAt(const char* data) {
    T value;
    std::memcpy(&value, data, sizeof(T));  // fields of packed records are not aligned
    return value;
}

/// Calls `call` with a value of the column's type. Only the type matters.
template <class Call>
void withTypeOf(const Column& column, const Call& call) {
    switch (column.scalar) {
        case Scalar::Bool:
        case Scalar::UInt8:
            return call(std::uint8_t{});
        case Scalar::Int8:
            return call(std::int8_t{});
        case Scalar::Int16:
            return call(std::int16_t{});
        case Scalar::Int32:
            return call(std::int32_t{});
        case Scalar::Int64:
            return call(std::int64_t{});
        case Scalar::UInt16:
            return call(std::uint16_t{});
        case Scalar::UInt32:
            return call(std::uint32_t{});
        case Scalar::UInt64:
            return call(std::uint64_t{});
        case Scalar::Float32:
            return call(float{});
        case Scalar::Float64:
            return call(double{});
    }
}

template <typename T>
[[noreturn]] void refuse(const char* name, std::size_t index, T value, const char* rule) {
    // fmt would print a char as a letter.
    throw std::invalid_argument(fmt::format("{} of event {} is {}: {}", name, index, +value, rule));
}

template <typename T>
std::uint32_t toPosition(T value, const char* name, std::size_t index) {
    if constexpr (std::is_floating_point_v<T>) {
        if (!std::isfinite(value) || value != std::floor(value)) {
            refuse(name, index, value, "positions must be whole pixels; round them first");
        }
    }
    const bool is_position = value >= T{0} && static_cast<double>(value) < kOffSensor;
    return is_position ? static_cast<std::uint32_t>(value) : kOffSensor;
}

void readPositions(const Column& column, const char* name, std::size_t first, std::size_t count,
                   std::uint32_t* positions) {
    withTypeOf(column, [&](auto type) {
        using T = decltype(type);
        for (std::size_t i = 0; i < count; ++i) {
            positions[i] = toPosition(valueAt<T>(column.at(first + i)), name, first + i);
        }
    });
}

/// Microseconds per unit, for all units except nanoseconds.
std::uint64_t microsecondsIn(TimeUnit unit) {
    return unit == TimeUnit::Seconds ? 1'000'000 : unit == TimeUnit::Milliseconds ? 1'000 : 1;
}

/// Rounds to the nearest microsecond, like the reader of recordings.
template <typename T>
std::uint64_t toMicroseconds(T value, TimeUnit unit, std::size_t index) {
    constexpr const char* kRule = "times must be from 0 to 2^63 - 1 microseconds";
    if constexpr (std::is_floating_point_v<T>) {
        const auto exact = static_cast<double>(value);
        const double microseconds = std::round(
            unit == TimeUnit::Nanoseconds ? exact / 1000.0
                                          : exact * static_cast<double>(microsecondsIn(unit)));
        // This form rejects NaN, too. The largest time rounds up to 2^63.
        if (!(exact >= 0.0 && microseconds < static_cast<double>(kLatestTime))) {
            refuse("time", index, value, kRule);
        }
        if (std::is_same_v<T, float> && microseconds > kLatestFloatTime) {
            refuse("time", index, value,
                   "32-bit floating-point numbers of this size are more than a millisecond apart; "
                   "use 64 bits, or count times from the first event");
        }
        return static_cast<std::uint64_t>(microseconds);
    } else {
        const auto whole = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
        if (unit == TimeUnit::Nanoseconds && value >= T{0}) {
            return whole / 1000 + (whole % 1000 >= 500 ? 1 : 0);
        }
        if (value < T{0} || whole > kLatestTime / microsecondsIn(unit)) {
            refuse("time", index, value, kRule);
        }
        return whole * microsecondsIn(unit);
    }
}

void readTimes(const Column& column, TimeUnit unit, std::size_t first, std::size_t count,
               std::uint64_t* times) {
    withTypeOf(column, [&](auto type) {
        using T = decltype(type);
        for (std::size_t i = 0; i < count; ++i) {
            times[i] = toMicroseconds(valueAt<T>(column.at(first + i)), unit, first + i);
        }
    });
}

/// Whether positions can be read as unsigned 16-bit numbers. Negative positions must then exceed
/// the sensor.
bool isPlainPosition(const Column& column, unsigned side) {
    constexpr unsigned kLargestSigned = 32768;
    return column.scalar == Scalar::UInt16 ||
           (column.scalar == Scalar::Int16 && side <= kLargestSigned);
}

}  // namespace

EventLoader::EventLoader(const EventColumns& columns_, recording::SensorSize sensor)
    : columns(columns_),
      width(static_cast<unsigned>(sensor.width)),
      height(static_cast<unsigned>(sensor.height)),
      is_plain(hasPlainLayout()) {}

/// Whether the columns have the common types, in any memory layout.
bool EventLoader::hasPlainLayout() const {
    const Scalar time = columns.time.scalar;
    const Scalar polarity = columns.polarity.scalar;
    return isPlainPosition(columns.x, width) && isPlainPosition(columns.y, height) &&
           (time == Scalar::Int64 || time == Scalar::UInt64) &&
           columns.time_unit == TimeUnit::Microseconds &&
           (polarity == Scalar::Bool || polarity == Scalar::UInt8 || polarity == Scalar::Int8);
}

std::size_t EventLoader::load(std::size_t first, std::size_t count, Event2D* events) {
    if (is_plain) {
        const std::size_t kept = loadPlain(first, count, events);
        if (kept <= count) {
            return kept;
        }
    }
    return loadAny(first, count, events);
}

/// Reads events whose values need no conversion.
/// \returns more than `count` if a polarity is neither 0 nor 1, or a time has 64 bits.
std::size_t EventLoader::loadPlain(std::size_t first, std::size_t count, Event2D* events) {
    const char* x = columns.x.at(first);
    const char* y = columns.y.at(first);
    const char* time = columns.time.at(first);
    const char* polarity = columns.polarity.at(first);
    std::uint64_t all_times = 0;
    unsigned all_polarities = 0;
    unsigned common_polarity = 1;
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        // Always write the event. The next one overwrites it if it is off the sensor.
        Event2D& event = events[kept];
        event.x = valueAt<std::uint16_t>(x);
        event.y = valueAt<std::uint16_t>(y);
        event.polarity = valueAt<std::uint8_t>(polarity);
        event.timestamp = valueAt<std::uint64_t>(time);
        all_times |= event.timestamp;
        all_polarities |= event.polarity;
        common_polarity &= event.polarity;
        kept +=
            static_cast<std::size_t>(event.x < width) & static_cast<std::size_t>(event.y < height);
        x += columns.x.stride;
        y += columns.y.stride;
        time += columns.time.stride;
        polarity += columns.polarity.stride;
    }
    if (all_polarities > 1 || all_times > kLatestTime) {
        return count + 1;
    }
    has_zero = has_zero || common_polarity == 0;
    if (has_zero && has_minus) {
        return count + 1;
    }
    return kept;
}

std::size_t EventLoader::loadAny(std::size_t first, std::size_t count, Event2D* events) {
    readPositions(columns.x, "x", first, count, xs.data());
    readPositions(columns.y, "y", first, count, ys.data());
    readTimes(columns.time, columns.time_unit, first, count, times.data());
    readPolarities(first, count);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        Event2D& event = events[kept];
        event.x = static_cast<std::uint16_t>(xs[i]);
        event.y = static_cast<std::uint16_t>(ys[i]);
        event.polarity = polarities[i];
        event.timestamp = times[i];
        kept += xs[i] < width && ys[i] < height ? 1 : 0;
    }
    return kept;
}

void EventLoader::readPolarities(std::size_t first, std::size_t count) {
    withTypeOf(columns.polarity, [&](auto type) {
        using T = decltype(type);
        for (std::size_t i = 0; i < count; ++i) {
            const T value = valueAt<T>(columns.polarity.at(first + i));
            const bool is_minus = std::is_signed_v<T> && value == static_cast<T>(-1);
            if (!is_minus && value != T{0} && value != T{1}) {
                refuse("polarity", first + i, value, "polarities must be 0 and 1, or -1 and 1");
            }
            has_minus = has_minus || is_minus;
            has_zero = has_zero || value == T{0};
            if (has_minus && has_zero) {
                refuse("polarity", first + i, value,
                       "the events have both -1 and 0, but only one of them can mean darker");
            }
            polarities[i] = value == T{1} ? 1 : 0;
        }
    });
}

}  // namespace kelvora::python
