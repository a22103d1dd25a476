// SPDX-License-Identifier: MIT
#include "reference/point_intake.hpp"

namespace kelvora::reference {

template <int DIM>
void PointIntake<DIM>::processEvent(const Event2D* event) {
    if (event == nullptr || event->polarity == rejected_polarity) {
        return;
    }
    counter.addTimestamp(event->timestamp);
    KDPoint<DIM, float>& point = points.emplace_back();
    point.coordinates[0] = static_cast<float>(event->x) * scale_width;
    point.coordinates[1] = static_cast<float>(event->y) * scale_height;
    if constexpr (DIM == 3) {
        point.coordinates[2] = static_cast<float>(event->timestamp) * scale_time;
    }
}

template class PointIntake<2>;
template class PointIntake<3>;

}  // namespace kelvora::reference
