// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "sessions/settings.hpp"

/// \file
/// The table of all parameters of a session, and the rules for their values. The options of the
/// command-line tool and the keywords of the Python package are made from it or checked against it.

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

    /// The default for help texts; empty if there is none.
    std::string defaultText() const;

    /// The accepted words; empty for numbers and flags.
    std::vector<std::string> words() const;

    bool isFlag() const;
    bool isDuration() const;

    /// The value that a command line states.
    /// \throws ParameterError  for a duration that cannot be read.
    Value parse(const std::string& text) const;
};

/// All parameters, in the order of help texts.
const std::vector<Parameter>& parameterTable();

/// The parameter with this keyword, or null.
const Parameter* findParameter(std::string_view keyword);

/// A value or combination that is refused. Each user interface words it with its own names.
struct ParameterError {
    enum class Kind {
        Text,      ///< Refused for the reason in `value`.
        Number,    ///< Out of range, or of another type: `value`.
        Word,      ///< None of the accepted words: `value`.
        Required,  ///< Missing with `other` = `value`.
        NotUsed,   ///< Not used with `other` = `value`.
        Needs,     ///< Needs `other` = `value`; an empty value stands for a flag.
        OnlyWith,  ///< Its value `own` needs `other` = `value`.
        Excludes,  ///< Not together with `other`.
        After,     ///< Must be later than `other`.
        AtMost,    ///< Must be at most `other`.
        TooLong,   ///< Must be at most `own` with `other` = `value`.
        IsZero     ///< Must be longer than 0.
    };

    Kind kind;
    const Parameter* parameter;
    std::string value = {};
    const Parameter* other = nullptr;
    std::string own = {};
};

/// How an interface names parameters.
struct Wording {
    std::string (*name)(const Parameter&);
    std::string (*setting)(const Parameter&, const std::string& value);
};

/// The rest of a sentence whose subject is the parameter: "must be larger than 0, not '0'".
std::string describe(const ParameterError& error, const Wording& wording);

/// Collects what a user sets, and checks it.
class SettingsBuilder {
public:
    /// A flag that is false counts as not given.
    ///
    /// \throws ParameterError  for a value that the parameter does not accept.
    void set(const Parameter& parameter, const Value& value);

    /// Checks combinations of parameters.
    ///
    /// \throws ParameterError  for the first contradiction.
    void check() const;

    Settings settings;

private:
    bool isGiven(std::string_view keyword) const;
    void checkWindows() const;
    void checkMethod() const;
    void checkPoints() const;
    void checkTracking() const;

    std::set<const Parameter*> given;
};

}  // namespace kelvora::tool
