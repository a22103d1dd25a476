// SPDX-License-Identifier: MIT
#include "support/first_difference.hpp"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <tuple>

namespace kelvora::test {

namespace {

auto fieldsOf(const ClusterGeometry& cluster) {
    return std::tie(cluster.x, cluster.y, cluster.z, cluster.width, cluster.height, cluster.depth,
                    cluster.start_time, cluster.duration, cluster.timestamp);
}

std::string describe(const ClusterGeometry& cluster) {
    std::ostringstream text;
    std::apply([&text](const auto&... field) { ((text << field << ' '), ...); }, fieldsOf(cluster));
    return text.str();
}

}  // namespace

std::optional<std::string> firstDifference(const std::vector<ClusterGeometry>& actual,
                                           const std::vector<ClusterGeometry>& expected) {
    std::ostringstream text;
    for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i) {
        if (fieldsOf(actual[i]) != fieldsOf(expected[i])) {
            text << "cluster " << i << " is " << describe(actual[i]) << "instead of "
                 << describe(expected[i]);
            return text.str();
        }
    }
    if (actual.size() != expected.size()) {
        text << actual.size() << " clusters instead of " << expected.size();
        return text.str();
    }
    return std::nullopt;
}

}  // namespace kelvora::test
