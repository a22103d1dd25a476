// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "kelvora/recording/export.hpp"

namespace kelvora::recording {

/// Unit in which a text recording gives its times.
enum class TimeUnit {
    Seconds,       ///< 1 s.
    Milliseconds,  ///< 0.001 s.
    Microseconds,  ///< 0.000001 s.
    Nanoseconds    ///< 0.000000001 s, rounded to microseconds.
};

/// Meaning of a column of a text recording.
enum class TextColumn {
    Time,     ///< Time of the event.
    X,        ///< Pixel column from the left.
    Y,        ///< Pixel row from the top.
    Polarity  ///< 1 brighter; 0 or -1 darker.
};

/// Order of the columns. Each column occurs once.
using TextColumns = std::array<TextColumn, 4>;

/// The order `t x y p`, unless a recording or the user names another.
inline constexpr TextColumns kDefaultTextColumns = {TextColumn::Time, TextColumn::X, TextColumn::Y,
                                                    TextColumn::Polarity};

/// How a text recording is laid out: one event per line, in four columns separated by blanks, tabs,
/// commas or semicolons. Polarity is 1 or 0 (-1 is the same as 0). Lines that are blank or begin
/// with `#` are skipped.
///
/// Members that are not set are detected from the recording:
/// - The order of the columns is taken from a first line that names them, such as `x,y,p,t`, or is
///   `t x y p`.
/// - The unit may be part of the column name, as in `t_us`. Otherwise the first event decides: a
///   time with a decimal point or exponent is in seconds, a whole number in microseconds.
///
/// A first line of two whole numbers is the width and height of the sensor.
struct TextLayout {
    std::optional<TextColumns> columns;  ///< Order of the columns.
    std::optional<TimeUnit> time_unit;   ///< Unit of the times.
};

/// Parses an order of columns such as `xypt` or `x,y,p,t`.
///
/// \param text  The order.
/// \return Empty if the text is not one.
KELVORA_RECORDING_EXPORT std::optional<TextColumns> textColumnsFromString(std::string_view text);

/// Parses a unit of time.
///
/// \param text  "s", "ms", "us" or "ns".
/// \return Empty for any other text.
KELVORA_RECORDING_EXPORT std::optional<TimeUnit> timeUnitFromString(std::string_view text);

}  // namespace kelvora::recording
