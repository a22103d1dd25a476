// SPDX-License-Identifier: MIT
#include "sessions/polarity.hpp"

#include <algorithm>

namespace kelvora::tool {

void keepPolarity(std::vector<Event2D>& events, Polarity wanted) {
    if (wanted != Polarity::On && wanted != Polarity::Off) {
        return;
    }
    const unsigned char unwanted = wanted == Polarity::On ? 0 : 1;
    const auto is_unwanted = [unwanted](const Event2D& event) {
        return event.polarity == unwanted;
    };
    events.erase(std::remove_if(events.begin(), events.end(), is_unwanted), events.end());
}

}  // namespace kelvora::tool
