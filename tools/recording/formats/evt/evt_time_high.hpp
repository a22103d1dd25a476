// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora::recording {

/// The high part of the time in an EVT stream. It is sent in separate words, has few bits and wraps
/// around.
///
/// A decrease by more than half the range is a wrap. A smaller decrease means that time goes back.
/// This requires that the high part is sent at least once per half range, 8.4 s in EVT3 and 2.4
/// hours in EVT2.
class EvtTimeHigh {
public:
    /// \param high_bits  Number of bits of the high part.
    /// \param low_bits_  Number of bits of the low part, which is sent in events or separate words.
    EvtTimeHigh(unsigned high_bits, unsigned low_bits_)
        : range(std::uint64_t{1} << high_bits), low_bits(low_bits_) {}

    /// Updates the time with the high part of a time word.
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
