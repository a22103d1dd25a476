// SPDX-License-Identifier: MIT
#include "sessions/methods.hpp"

#include <algorithm>
#include <stdexcept>

#include "sessions/centroid_method.hpp"
#include "sessions/density_method.hpp"
#include "sessions/grid_method.hpp"
#include "sessions/suggestion.hpp"

namespace kelvora::tool {

bool Method::uses(Group group) const {
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

const std::vector<Method>& methods() {
    static const std::vector<Method> all = {
        {"grid", {"cells"}, {Group::Grid}, false, false, makeGridMethod},
        {"density", {"dbscan"}, {Group::Points, Group::Density}, true, false, makeDensityMethod},
        {"centroid",
         {"kmeans", "k-means"},
         {Group::Points, Group::Centroid},
         true,
         true,
         makeCentroidMethod},
    };
    return all;
}

const Method& methodOf(std::string_view name) {
    for (const Method& method : methods()) {
        if (method.name == name) {
            return method;
        }
    }
    throw std::invalid_argument("there is no method " + std::string(name));
}

std::string suggestedMethod(std::string_view word) {
    for (const Method& method : methods()) {
        std::vector<std::string> names = method.also_known;
        names.push_back(method.name);
        if (closestWord(word, names)) {
            return "; did you mean " + method.name + "?";
        }
    }
    return {};
}

}  // namespace kelvora::tool
