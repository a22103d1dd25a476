// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "sessions/parameters.hpp"

namespace kelvora::tool {

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

}  // namespace kelvora::tool
