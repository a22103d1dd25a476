// SPDX-License-Identifier: MIT
// How busy a sensor is: counts the events of the last 100 ms at any time.
#include <iostream>
#include <kelvora/kelvora.hpp>
#include <vector>

int main() {
    // 100 bins of 1 ms. Only gaps of at least one bin between two events advance the window.
    kelvora::SlidingEventCounter counter(100'000, 100);

    for (unsigned long long time = 0; time < 300'000; time += 2'000) {  // 500 events per second
        const kelvora::Event2D event(10, 20, 1, time);
        counter.addEvent(&event);
    }
    const auto calm = counter.getEventCount();
    std::cout << calm << " events in the last 100 ms\n";

    // The counter also takes plain times. The flash moves the window on, and one event leaves it.
    const std::vector<unsigned long long> flash(5'000, 300'000);
    counter.addTimestamps(flash.data(), flash.size());
    const auto busy = counter.getEventCount();
    std::cout << busy << " with the flash\n";

    const kelvora::Event2D much_later(10, 20, 1, 500'000);
    counter.addEvent(&much_later);
    const auto after = counter.getEventCount();
    std::cout << after << " when it is long over\n";

    return calm == 50 && busy == 5'049 && after == 1 ? 0 : 1;
}
