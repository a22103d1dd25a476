// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "sessions/settings.hpp"

/// \file
/// The table of all parameters of a session. The options of the command-line tool and the keywords
/// of the Python package are made from it or checked against it.

namespace kelvora::tool {

/// Parameters that are used together.
enum class Group { General, Grid, Points, Density, Centroid, Tracking };

/// Heading in help texts: "Grid method".
const char* titleOf(Group group);

/// A setting of any type.
using Field = std::variant<bool*, int*, unsigned short*, unsigned long long*, float*, double*,
                           std::optional<float>*, Duration*, std::optional<Duration>*, Polarity*,
                           Precision*, std::string*>;

/// A value as given by the user. Durations are integers, microseconds.
using Value = std::variant<bool, std::int64_t, double, std::string>;

/// Accepted numbers. Infinity and NaN are never accepted.
struct Range {
    double smallest = -std::numeric_limits<double>::infinity();
    double largest = std::numeric_limits<double>::infinity();
    bool is_open = false;  ///< Whether `smallest` itself is refused.
};

/// A row of the table.
struct Parameter {
    Group group;
    const char* keyword;   ///< Name in Python: "cell_width".
    const char* option;    ///< Name on the command line: "--cell-width".
    const char* unit;      ///< Placeholder in help texts: "PIXELS".
    Range range;           ///< For numbers.
    const char* sentence;  ///< Description, without a full stop.
    Field (*field)(Settings&);
    const char* default_text = nullptr;  ///< The default in words, if its value does not tell.

    /// The default for help texts; empty if there is none.
    std::string defaultText() const;

    /// The accepted words; empty for numbers and flags.
    std::vector<std::string> words() const;

    bool isFlag() const { return holds<bool>(); }
    bool isDuration() const { return holds<Duration, std::optional<Duration>>(); }

    /// Whether the setting has one of these types.
    template <typename... Types>
    bool holds() const {
        Settings settings;
        const Field setting = field(settings);
        return (std::holds_alternative<Types*>(setting) || ...);
    }

    /// The value that a command line states.
    /// \throws ParameterError  for a duration that cannot be read.
    Value parse(const std::string& text) const;
};

/// All parameters, in the order of help texts.
const std::vector<Parameter>& parameterTable();

/// The parameter with this keyword, or null.
const Parameter* findParameter(std::string_view keyword);

}  // namespace kelvora::tool
