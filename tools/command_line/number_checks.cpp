// SPDX-License-Identifier: MIT
#include "command_line/number_checks.hpp"

#include <cmath>
#include <string>

namespace kelvora::tool {

namespace {

template <class Holds>
CLI::Validator numberThat(const Holds& holds, const std::string& rule) {
    return {[holds, rule](const std::string& text) {
                double number = 0.0;
                const bool is_fine = CLI::detail::lexical_cast(text, number) &&
                                     std::isfinite(number) && holds(number);
                return is_fine ? std::string() : rule + ", not '" + text + "'";
            },
            ""};
}

}  // namespace

CLI::Validator isPositive() {
    return numberThat([](double number) { return number > 0.0; }, "must be a number larger than 0");
}

CLI::Validator isNotNegative() {
    return numberThat([](double number) { return number >= 0.0; },
                      "must be a number of at least 0");
}

}  // namespace kelvora::tool
