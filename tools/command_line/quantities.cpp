// SPDX-License-Identifier: MIT
#include "command_line/quantities.hpp"

#include <fmt/format.h>

#include <CLI/Error.hpp>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace kelvora {

namespace {

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
    try {
        duration = durationFromString(text);
    } catch (const std::invalid_argument& error) {
        throw CLI::ConversionError(error.what());
    }
    return true;
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
