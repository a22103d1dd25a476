// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "sessions/parameter_error.hpp"

namespace kelvora::tool {

/// Names parameters by their keywords.
inline const Wording kKeywordWording = {
    [](const Parameter& parameter) { return std::string(parameter.keyword); },
    [](const Parameter& parameter, const std::string& value) {
        return std::string(parameter.keyword) + (value.empty() ? "" : " " + value);
    }};

}  // namespace kelvora::tool
