// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kelvora/cluster_geometry.hpp"

namespace kelvora::test {

/// Says where two lists of clusters differ in any field or in their order, or nothing if they are
/// the same.
std::optional<std::string> firstDifference(const std::vector<ClusterGeometry>& actual,
                                           const std::vector<ClusterGeometry>& expected);

}  // namespace kelvora::test
