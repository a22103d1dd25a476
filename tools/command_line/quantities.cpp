// SPDX-License-Identifier: MIT
#include "command_line/quantities.hpp"

#include <fmt/format.h>

#include <CLI/Error.hpp>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

namespace kelvora {

namespace {

struct Unit {
    std::string_view name;
    std::uint64_t microseconds;
};

constexpr std::array<Unit, 3> kUnits = {{{"s", 1'000'000}, {"ms", 1'000}, {"us", 1}}};

// About 30,000 years. Beyond this, sums with timestamps could overflow.
constexpr double kLongestDuration = 1e18;

std::uint64_t unitOf(std::string_view name, const std::string& text) {
    for (const Unit& unit : kUnits) {
        if (unit.name == name) {
            return unit.microseconds;
        }
    }
    throw CLI::ConversionError(fmt::format("'{}' needs a unit: us, ms or s, as in 10ms", text));
}

template <class Value>
bool assign(const std::optional<Value>& parsed, Value& value, const std::string& text,
            std::string_view expected) {
    if (!parsed) {
        throw CLI::ConversionError(fmt::format("'{}' is not {}", text, expected));
    }
    value = *parsed;
    return true;
}

}  // namespace

namespace tool {

bool lexical_cast(const std::string& text, Duration& duration) {
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc()) {
        throw CLI::ConversionError(fmt::format("'{}' is not a time such as 10ms", text));
    }
    const std::string_view unit(rest, static_cast<std::size_t>(end - rest));
    const double microseconds = std::round(number * static_cast<double>(unitOf(unit, text)));
    if (!(0.0 <= microseconds && microseconds <= kLongestDuration)) {
        throw CLI::ConversionError(fmt::format("'{}' is negative or too long", text));
    }
    duration.microseconds = static_cast<std::uint64_t>(microseconds);
    return true;
}

std::string toString(Duration duration) {
    for (const Unit& unit : kUnits) {
        if (duration.microseconds % unit.microseconds == 0) {
            return fmt::format("{}{}", duration.microseconds / unit.microseconds, unit.name);
        }
    }
    return {};
}

}  // namespace tool

namespace recording {

bool lexical_cast(const std::string& text, SensorSize& size) {
    return assign(sensorSizeFromString(text), size, text,
                  "a sensor size: WIDTHxHEIGHT in pixels, as in 640x480");
}

bool lexical_cast(const std::string& text, TimeUnit& unit) {
    return assign(timeUnitFromString(text), unit, text, "one of s, ms, us, ns");
}

}  // namespace recording

}  // namespace kelvora
