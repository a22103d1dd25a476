// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "kelvora/recording/text_layout.hpp"

/// \file
/// Memory layout of the values of events. Independent of Python.

namespace kelvora::python {

/// Numeric types, all in native byte order.
enum class Scalar {
    Bool,
    Int8,
    Int16,
    Int32,
    Int64,
    UInt8,
    UInt16,
    UInt32,
    UInt64,
    Float32,
    Float64
};

/// One value of each event.
struct Column {
    const char* data;
    std::ptrdiff_t stride;  ///< Bytes between two events; may be negative.
    Scalar scalar;

    const char* at(std::size_t index) const {
        return data + static_cast<std::ptrdiff_t>(index) * stride;
    }
};

/// Times and positions may have any type except `Bool`, polarities any type.
struct EventColumns {
    std::size_t size;  ///< Number of events.
    Column x;
    Column y;
    Column time;
    Column polarity;
    recording::TimeUnit time_unit;
};

}  // namespace kelvora::python
