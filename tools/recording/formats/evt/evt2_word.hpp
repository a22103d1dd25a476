// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora::recording {

/// Words of EVT2 have 32 bits, little-endian; bits 31 to 28 are the type.
///
/// An event holds the low part of its time in bits 27 to 22, x in bits 21 to 11 and y in bits 10 to
/// 0. A time word holds the high part in bits 27 to 0.
enum class Evt2WordType : std::uint32_t {
    EventOff = 0x0,
    EventOn = 0x1,
    TimeHigh = 0x8,
    ExternalTrigger = 0xA,
    Others = 0xE,
    Continued = 0xF
};

inline constexpr unsigned kEvt2TypeShift = 28;
inline constexpr unsigned kEvt2TimeLowShift = 22;
inline constexpr unsigned kEvt2XShift = 11;
inline constexpr unsigned kEvt2TimeLowBits = 6;
inline constexpr unsigned kEvt2TimeHighBits = 28;
inline constexpr std::uint32_t kEvt2TimeLowMask = 0x3F;
inline constexpr std::uint32_t kEvt2TimeHighMask = 0xFFFFFFF;
inline constexpr std::uint32_t kEvt2CoordinateMask = 0x7FF;

}  // namespace kelvora::recording
