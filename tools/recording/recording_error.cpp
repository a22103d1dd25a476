// SPDX-License-Identifier: MIT
#include "kelvora/recording/recording_error.hpp"

#include <fmt/format.h>

namespace kelvora::recording {
namespace {

using Unit = ErrorPlace::Unit;

std::string_view nameInCxx(Setting setting) {
    switch (setting) {
        case Setting::Format:
            return "ReadOptions::format";
        case Setting::SensorSize:
            return "ReadOptions::sensor_size";
        case Setting::Columns:
            return "ReadOptions::text.columns";
        case Setting::TimeUnit:
            return "ReadOptions::text.time_unit";
        case Setting::None:
            break;
    }
    return "";
}

std::string inWords(const Remedy& remedy, RecordingError::SettingNames names) {
    constexpr std::string_view kGap = "{}";
    std::string text = remedy.text;
    if (remedy.setting == Setting::None) {
        return text;
    }
    const std::string_view name = names(remedy.setting);
    for (std::size_t gap = text.find(kGap); gap != std::string::npos;
         gap = text.find(kGap, gap + name.size())) {
        text.replace(gap, kGap.size(), name);
    }
    return text;
}

std::string lineOf(const std::string& file, const std::string& problem, const ErrorPlace& place,
                   const std::string& remedy) {
    const std::string where = toString(place);
    return file + ": " + problem + (where.empty() ? "" : ", " + where) + ", " + remedy;
}

}  // namespace

std::string toString(const ErrorPlace& place) {
    switch (place.unit) {
        case Unit::Byte:
            return fmt::format("byte {}", place.number);
        case Unit::Line:
            return fmt::format("line {}", place.number);
        case Unit::Event:
            return fmt::format("event {}", place.number);
        case Unit::EventAt:
            return fmt::format("event at {} us", place.number);
        case Unit::WholeFile:
            break;
    }
    return "";
}

RecordingError::RecordingError(ErrorKind kind, const std::string& file, const std::string& problem,
                               const ErrorPlace& place, const Remedy& remedy)
    : std::runtime_error(lineOf(file, problem, place, inWords(remedy, nameInCxx))),
      parts(std::make_shared<const Parts>(Parts{kind, file, problem, place, remedy})) {}

std::string RecordingError::remedy(SettingNames names) const {
    return inWords(parts->remedy, names);
}

std::string RecordingError::message(SettingNames names) const {
    return lineOf(file(), problem(), place(), remedy(names));
}

}  // namespace kelvora::recording
