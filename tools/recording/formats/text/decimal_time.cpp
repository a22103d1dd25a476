// SPDX-License-Identifier: MIT
#include "recording/formats/text/decimal_time.hpp"

#include <charconv>
#include <cmath>

#include "recording/coding/event_decoder.hpp"

namespace kelvora::recording {
namespace {

// Number of decimals that give whole microseconds. Nanoseconds are handled separately.
unsigned fractionDigits(TimeUnit unit) {
    switch (unit) {
        case TimeUnit::Seconds:
            return 6;
        case TimeUnit::Milliseconds:
            return 3;
        default:
            return 0;
    }
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

std::optional<std::uint64_t> fromExponential(std::string_view number, TimeUnit unit) {
    double value = 0.0;
    const char* const end = number.data() + number.size();
    const auto result = std::from_chars(number.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    const double microseconds =
        std::round(unit == TimeUnit::Nanoseconds ? value / 1000.0
                                                 : value * std::pow(10.0, fractionDigits(unit)));
    // This form rejects NaN, too. As a double, the largest time rounds up to 2^63.
    if (!(microseconds >= 0.0 && microseconds < static_cast<double>(kLatestTime))) {
        return std::nullopt;
    }
    return static_cast<std::uint64_t>(microseconds);
}

// Appends the digits of `fraction` to `whole` up to microseconds. The next digit decides on
// rounding.
std::optional<std::uint64_t> appendFraction(std::uint64_t whole, std::string_view fraction,
                                            unsigned digits) {
    for (unsigned i = 0; i < digits; ++i) {
        const unsigned digit = i < fraction.size() ? static_cast<unsigned>(fraction[i] - '0') : 0;
        if (whole > (kLatestTime - digit) / 10) {
            return std::nullopt;
        }
        whole = whole * 10 + digit;
    }
    return whole + (fraction.size() > digits && fraction[digits] >= '5' ? 1 : 0);
}

}  // namespace

std::optional<std::uint64_t> microsecondsFromDecimal(std::string_view number, TimeUnit unit) {
    std::uint64_t whole = 0;
    const char* const end = number.data() + number.size();
    const auto result = std::from_chars(number.data(), end, whole);
    if (result.ec == std::errc::result_out_of_range) {
        return std::nullopt;
    }
    const char* point = result.ptr;  // the start, if there is no digit before the point
    std::string_view fraction;
    if (point != end && *point == '.') {
        const char* digits_end = point + 1;
        while (digits_end != end && isDigit(*digits_end)) {
            ++digits_end;
        }
        fraction = std::string_view(point + 1, static_cast<std::size_t>(digits_end - point - 1));
        point = digits_end;
    }
    if (point != end || (result.ec != std::errc() && fraction.empty())) {
        return fromExponential(number, unit);
    }
    if (unit == TimeUnit::Nanoseconds) {
        return whole / 1000 + (whole % 1000 >= 500 ? 1 : 0);
    }
    const auto microseconds = appendFraction(whole, fraction, fractionDigits(unit));
    return microseconds && *microseconds <= kLatestTime ? microseconds : std::nullopt;
}

}  // namespace kelvora::recording
