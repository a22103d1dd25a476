// SPDX-License-Identifier: MIT
#include "sessions/duration.hpp"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>

namespace kelvora::tool {

namespace {

struct Unit {
    std::string_view name;
    std::uint64_t microseconds;
};

constexpr std::array<Unit, 3> kUnits = {{{"s", 1'000'000}, {"ms", 1'000}, {"us", 1}}};

std::uint64_t unitOf(std::string_view name, const std::string& text) {
    for (const Unit& unit : kUnits) {
        if (unit.name == name) {
            return unit.microseconds;
        }
    }
    throw std::invalid_argument(fmt::format("'{}' needs a unit: us, ms or s, as in 10ms", text));
}

}  // namespace

Duration durationFromString(const std::string& text) {
    double number = 0.0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc()) {
        throw std::invalid_argument(fmt::format("'{}' is not a time such as 10ms", text));
    }
    const std::string_view unit(rest, static_cast<std::size_t>(end - rest));
    const double microseconds = std::round(number * static_cast<double>(unitOf(unit, text)));
    if (!(0.0 <= microseconds && microseconds <= static_cast<double>(Duration::kLongest))) {
        throw std::invalid_argument(fmt::format("'{}' is negative or too long", text));
    }
    return {static_cast<std::uint64_t>(microseconds)};
}

std::string toString(Duration duration) {
    for (const Unit& unit : kUnits) {
        if (duration.microseconds % unit.microseconds == 0) {
            return fmt::format("{}{}", duration.microseconds / unit.microseconds, unit.name);
        }
    }
    return {};
}

}  // namespace kelvora::tool
