// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string_view>

#include "sessions/parameters.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// Collects and checks the parameters that a user sets.
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

    /// The parameters that were set.
    const std::set<const Parameter*>& givenParameters() const { return given; }

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
