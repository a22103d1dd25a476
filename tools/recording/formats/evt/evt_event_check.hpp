// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

#include "kelvora/events.hpp"

namespace kelvora::recording {

/// Rejects events that EVT words cannot represent.
///
/// Coordinates have 11 bits, and readers take a time that goes back for one that wraps around. A
/// pause, or the time before the first event, may last up to 2^40 us (12 days), because a time word
/// has to be written for every few seconds of it.
class EvtEventCheck {
public:
    explicit EvtEventCheck(std::string file);

    /// \throws RecordingError  if `event` cannot follow the events checked before.
    void check(const Event2D& event);

private:
    [[noreturn]] void refuse(const std::string& problem, const std::string& remedy) const;

    std::string file;
    std::uint64_t last_time = 0;
    std::uint64_t count = 0;
};

}  // namespace kelvora::recording
