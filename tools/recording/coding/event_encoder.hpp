// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "kelvora/events.hpp"

namespace kelvora::recording {

/// Encodes events into the bytes of a recording: the inverse of `EventDecoder`.
///
/// An encoder does not access files; the file name is only used in messages.
class EventEncoder {
public:
    virtual ~EventEncoder() = default;

    /// Appends the bytes of the header, if the format has one.
    virtual void encodeHeader(std::string& bytes) const = 0;

    /// Appends the bytes of `events`, which continue the events of the previous call.
    ///
    /// \param events  Of polarity 0 or 1.
    /// \throws RecordingError  at an event that the format cannot store.
    virtual void encode(const std::vector<Event2D>& events, std::string& bytes) = 0;
};

}  // namespace kelvora::recording
