// SPDX-License-Identifier: MIT
#include "sessions/parameter_error.hpp"

#include <fmt/format.h>

#include <cmath>
#include <vector>

#include "sessions/methods.hpp"
#include "sessions/suggestion.hpp"

namespace kelvora::tool {

namespace {

using Kind = ParameterError::Kind;

std::string ruleOf(const Parameter& parameter) {
    if (parameter.isFlag()) {
        return "true or false";
    }
    if (parameter.isDuration()) {
        return fmt::format("a whole number from 0 to {}", Duration::kLongest);
    }
    const bool is_real = parameter.holds<float, double, std::optional<float>>();
    const std::string kind = is_real ? "a number" : "a whole number";
    const Range& range = parameter.range;
    if (range.is_open) {
        return fmt::format("{} larger than {}", kind, range.smallest);
    }
    if (std::isfinite(range.largest)) {
        return fmt::format("{} from {:.0f} to {:.0f}", kind, range.smallest, range.largest);
    }
    return fmt::format("{} of at least {}", kind, range.smallest);
}

std::string wrongWord(const ParameterError& error) {
    const std::vector<std::string> words = error.parameter->words();
    const bool is_method = error.parameter->holds<std::string>();
    return fmt::format(
        "must be one of '{}', not '{}'{}", fmt::join(words, "', '"), error.value,
        is_method ? suggestedMethod(error.value) : suggestionFor(error.value, words));
}

}  // namespace

std::string describe(const ParameterError& error, const Wording& wording) {
    const auto other = [&] { return wording.name(*error.other); };
    const auto with = [&] { return wording.setting(*error.other, error.value); };
    switch (error.kind) {
        case Kind::Text:
            return error.value;
        case Kind::Number:
            return fmt::format("must be {}, not '{}'", ruleOf(*error.parameter), error.value);
        case Kind::Word:
            return wrongWord(error);
        case Kind::Required:
            return "is required with " + with();
        case Kind::NotUsed:
            return "is not used with " + with();
        case Kind::Needs:
            return "needs " + with();
        case Kind::OnlyWith:
            return error.own + " needs " + with();
        case Kind::Excludes:
            return "excludes " + other();
        case Kind::After:
            return "must be later than " + other();
        case Kind::AtMost:
            return "must be at most " + other();
        case Kind::TooLong:
            return fmt::format("must be at most {} with {}", error.own, with());
        case Kind::IsZero:
            return "must be longer than 0";
    }
    return {};
}

}  // namespace kelvora::tool
