// SPDX-License-Identifier: MIT
#include "support/grid_settings.hpp"

#include <ostream>

namespace kelvora::test {

GridSettings& GridSettings::sensor(int width, int height) {
    sensor_width = width;
    sensor_height = height;
    return *this;
}

GridSettings& GridSettings::cells(int width, int height) {
    cell_width = width;
    cell_height = height;
    return *this;
}

GridSettings& GridSettings::clusterSizes(int smallest, int largest) {
    min_cluster_size = smallest;
    max_cluster_size = largest;
    return *this;
}

GridSettings& GridSettings::filter(EventFilterType type) {
    filter_type = type;
    return *this;
}

GridSettings& GridSettings::countPixelOnce() {
    count_pixel_once = true;
    return *this;
}

GridSettings& GridSettings::threshold(unsigned short events) {
    activation_threshold = events;
    return *this;
}

std::ostream& operator<<(std::ostream& out, const GridSettings& settings) {
    return out << "sensor " << settings.sensor_width << 'x' << settings.sensor_height << ", cells "
               << settings.cell_width << 'x' << settings.cell_height << ", cluster sizes "
               << settings.min_cluster_size << " to " << settings.max_cluster_size << ", filter "
               << static_cast<unsigned>(settings.filter_type)
               << (settings.count_pixel_once ? ", pixels counted once" : "") << ", threshold "
               << settings.activation_threshold;
}

}  // namespace kelvora::test
