// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

/// \file
/// Where the values of events lie in memory. Knows nothing of Python.

namespace kelvora::python {

/// Types of numbers, all in the byte order of the machine.
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

enum class TimeUnit { Seconds, Milliseconds, Microseconds, Nanoseconds };

/// One value of each event.
struct Column {
    const char* data;
    std::ptrdiff_t stride;  ///< Bytes from one event to the next; may be negative.
    Scalar scalar;

    const char* at(std::size_t index) const {
        return data + static_cast<std::ptrdiff_t>(index) * stride;
    }
};

/// Times and positions may have any type but `Bool`, polarities any.
struct EventColumns {
    std::size_t size;  ///< Number of events.
    Column x;
    Column y;
    Column time;
    Column polarity;
    TimeUnit time_unit;
};

}  // namespace kelvora::python
