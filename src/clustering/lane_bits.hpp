// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// \file
/// Sets of lanes of a leaf: one bit for each.

namespace kelvora {

/// Number of bits set among the lowest 16. Not every processor has an instruction for it.
inline unsigned countBits(unsigned bits) {
    bits -= bits >> 1U & 0x5555U;
    bits = (bits & 0x3333U) + (bits >> 2U & 0x3333U);
    bits = (bits + (bits >> 4U)) & 0x0f0fU;
    return (bits + (bits >> 8U)) & 0x1fU;
}

/// Position of the lowest bit that is set. There must be one.
inline unsigned lowestBit(unsigned bits) {
    return static_cast<unsigned>(__builtin_ctz(bits));
}

/// Position of the highest bit that is set. There must be one.
inline unsigned highestBit(unsigned bits) {
    return 31U - static_cast<unsigned>(__builtin_clz(bits));
}

/// Calls `onLane(lane)` for each bit that is set, from the lowest to the highest.
template <class OnLane>
void forEachLane(unsigned lanes, OnLane onLane) {
    for (; lanes != 0; lanes &= lanes - 1) {
        onLane(lowestBit(lanes));
    }
}

/// Clears the lowest `count` of the bits that are set.
inline unsigned withoutLowest(unsigned bits, std::size_t count) {
    for (; count > 0; --count) {
        bits &= bits - 1;
    }
    return bits;
}

}  // namespace kelvora
