// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::tool {

/// The option for a setting, as remedies mention it: "--sensor WIDTHxHEIGHT".
std::string_view optionOf(recording::Setting setting);

}  // namespace kelvora::tool
