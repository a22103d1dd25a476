// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora::recording {

/// Words of EVT3 have 16 bits, little-endian; bits 15 to 12 are the type, the others are the
/// payload.
///
/// An event takes its time, row and polarity from the latest words that set them.
enum class Evt3WordType : std::uint16_t {
    AddressY = 0x0,     ///< Row of the following events, bits 10 to 0.
    AddressX = 0x2,     ///< One event: x in bits 10 to 0, polarity in bit 11.
    VectorBaseX = 0x3,  ///< Column (bits 10 to 0) and polarity (bit 11) of the following vectors.
    Vector12 = 0x4,  ///< Bit i: an event i columns right of the base, which then moves right by 12.
    Vector8 = 0x5,   ///< The same with 8 bits.
    TimeLow = 0x6,   ///< Bits 11 to 0 of the time.
    Continued4 = 0x7,       ///< More data of a word of type `Others`.
    TimeHigh = 0x8,         ///< Bits 23 to 12 of the time.
    ExternalTrigger = 0xA,  ///< An edge at a trigger input.
    Others = 0xE,           ///< Status messages of the sensor.
    Continued12 = 0xF       ///< More data of a word of type `Others`.
};

inline constexpr unsigned kEvt3TypeShift = 12;
inline constexpr unsigned kEvt3PolarityShift = 11;
inline constexpr unsigned kEvt3TimeLowBits = 12;
inline constexpr unsigned kEvt3TimeHighBits = 12;
inline constexpr std::uint16_t kEvt3PayloadMask = 0xFFF;
inline constexpr std::uint16_t kEvt3CoordinateMask = 0x7FF;

}  // namespace kelvora::recording
