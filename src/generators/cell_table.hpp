// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <type_traits>
#include <vector>

/// \file
/// The cells of a grid along each axis, and the checks of hardened builds.

namespace kelvora {

#ifdef KELVORA_HARDENED
constexpr bool kIsHardened = true;
#else
constexpr bool kIsHardened = false;
#endif

/// The row or column of a cell. In hardened builds, there is also a number for pixels off the
/// sensor: checking it takes less time than comparing each event with the size of the sensor.
using CellNumber = std::conditional_t<kIsHardened, std::uint32_t, std::uint16_t>;
constexpr std::uint32_t kOffTheSensor = 0x80000000;
constexpr std::size_t kMostPixels = 65536;  ///< On an axis, as coordinates have 16 bits.

/// Number of cells of `cell_size` that cover `sensor_size` pixels. Not positive if one of the sizes
/// is not.
inline int cellCount(int sensor_size, int cell_size) {
    if (cell_size < 1) {
        return 0;
    }
    // In 64 bits, because the sum may exceed an int.
    return static_cast<int>((std::int64_t{sensor_size} + cell_size - 1) / cell_size);
}

/// The cell of each pixel along one axis, so that adding an event needs no division.
inline std::vector<CellNumber> cellOfPixel(int sensor_size, int cell_size) {
    std::vector<CellNumber> cells(static_cast<std::size_t>(sensor_size));
    for (int pixel = 0; pixel < sensor_size; ++pixel) {
        cells[static_cast<std::size_t>(pixel)] = static_cast<CellNumber>(pixel / cell_size);
    }
    if (kIsHardened) {
        cells.resize(std::max(cells.size(), kMostPixels), static_cast<CellNumber>(kOffTheSensor));
    }
    return cells;
}

[[noreturn, gnu::cold]] inline void refuseEvent(const char* problem) {
    throw std::invalid_argument(problem);
}

/// Throws if an event is off the sensor, in hardened builds.
///
/// \param row,col  Its cell.
inline void requireOnSensor(std::size_t row, std::size_t col) {
    if (kIsHardened && ((row | col) & kOffTheSensor) != 0) {
        refuseEvent("GridBasedClusterGenerator: event off the sensor");
    }
}

}  // namespace kelvora
