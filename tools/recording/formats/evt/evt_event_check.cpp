// SPDX-License-Identifier: MIT
#include "recording/formats/evt/evt_event_check.hpp"

#include <fmt/format.h>

#include <utility>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

constexpr unsigned kLargestCoordinate = 2047;
constexpr std::uint64_t kLongestPause = std::uint64_t{1} << 40;

}  // namespace

EvtEventCheck::EvtEventCheck(std::string file_) : file(std::move(file_)) {}

void EvtEventCheck::check(const Event2D& event) {
    if (event.x > kLargestCoordinate || event.y > kLargestCoordinate) {
        refuse(fmt::format("cannot store the pixel ({}, {}), because EVT coordinates end at {}",
                           event.x, event.y, kLargestCoordinate),
               "write records or text");
    }
    if (event.timestamp < last_time) {
        refuse(fmt::format("cannot store the time {} us after {} us", event.timestamp, last_time),
               "sort the events by time, or write records or text");
    }
    if (event.timestamp - last_time > kLongestPause) {
        refuse(fmt::format("cannot store the time {} us after {} us, a pause of more than 12 days",
                           event.timestamp, last_time),
               "subtract a start time from all times, or write records or text");
    }
    last_time = event.timestamp;
    ++count;
}

void EvtEventCheck::refuse(const std::string& problem, const std::string& remedy) const {
    throw RecordingError(ErrorKind::CannotHold, file, problem, {ErrorPlace::Unit::Event, count},
                         remedy);
}

}  // namespace kelvora::recording
