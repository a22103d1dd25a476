// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>

namespace kelvora::tool {

/// Thrown for a command line that makes no sense, after its options have been parsed.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace kelvora::tool
