// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kelvora::recording {

/// Bytes of a file, text or not.
using Bytes = std::string_view;

/// Reads an unsigned little-endian number at `bytes`, independent of the machine's byte order.
template <typename Unsigned>
Unsigned loadLittleEndian(const char* bytes) {
    Unsigned value = 0;
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        value = static_cast<Unsigned>(
            value | static_cast<Unsigned>(
                        static_cast<Unsigned>(static_cast<unsigned char>(bytes[i])) << (8 * i)));
    }
    return value;
}

/// Appends the bytes of `value` in little-endian order.
template <typename Unsigned>
void appendLittleEndian(std::string& bytes, Unsigned value) {
    for (std::size_t i = 0; i < sizeof(Unsigned); ++i) {
        bytes.push_back(static_cast<char>(static_cast<unsigned char>(value >> (8 * i))));
    }
}

}  // namespace kelvora::recording
