// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kelvora/recording/sensor_size.hpp"
#include "sessions/clustering_method.hpp"
#include "sessions/parameters.hpp"
#include "sessions/settings.hpp"

namespace kelvora::tool {

/// A clustering method as users choose it.
struct Method {
    std::string name;
    std::vector<std::string> also_known;  ///< Other names that users may try.
    std::vector<Group> groups;            ///< The parameters that it uses, besides general ones.
    bool has_labels;                      ///< Whether it labels events.
    bool has_centroids;

    /// \throws std::runtime_error  if memory cannot be reserved.
    std::unique_ptr<ClusteringMethod> (*make)(const Settings& settings,
                                              recording::SensorSize sensor);

    bool uses(Group group) const;
};

/// All methods. The only place that chooses between them.
const std::vector<Method>& methods();

/// \param name  A name from the table.
const Method& methodOf(std::string_view name);

/// "; did you mean density?", or an empty string if no method has a similar name.
std::string suggestedMethod(std::string_view word);

}  // namespace kelvora::tool
