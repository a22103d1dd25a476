// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora::recording {

/// The high part of the time in an EVT stream. It is sent in words of its own, has few bits and
/// wraps around.
///
/// A wrap shows as a fall by more than half of the range. A smaller fall is one: time then goes
/// back. This holds as long as the high part is sent at least once in half a range, 8.4 s in EVT3
/// and 2.4 hours in EVT2.
class EvtTimeHigh {
public:
    /// \param high_bits  Width of the high part.
    /// \param low_bits_  Width of the low part, which events or words of their own give.
    EvtTimeHigh(unsigned high_bits, unsigned low_bits_)
        : range(std::uint64_t{1} << high_bits), low_bits(low_bits_) {}

    /// Takes over the high part of a time word.
    void set(std::uint64_t high_) {
        if (high_ + range / 2 < high) {
            wraps += range;
        }
        high = high_;
        is_known = true;
    }

    /// False before the first time word.
    bool isKnown() const { return is_known; }

    /// Time in microseconds with a low part of 0. The first time word counts as not wrapped.
    std::uint64_t microseconds() const { return (wraps + high) << low_bits; }

private:
    std::uint64_t range;
    unsigned low_bits;
    std::uint64_t wraps = 0;
    std::uint64_t high = 0;
    bool is_known = false;
};

}  // namespace kelvora::recording
