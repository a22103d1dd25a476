// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <string>

#include "kelvora/events.hpp"

/// \file
/// Feeding enough events to detect memory that grows with their number.

namespace kelvora::test {

/// A stream of twelve events per microsecond all over a sensor.
class DenseStream {
public:
    Event2D next() {
        state = state * 6364136223846793005 + 1442695040888963407;
        const auto x = static_cast<unsigned short>((state >> 33) % 1280);
        const auto y = static_cast<unsigned short>((state >> 45) % 720);
        return {x, y, static_cast<unsigned char>(state >> 63), count++ / 12};
    }

private:
    std::uint64_t state = 1;
    unsigned long long count = 0;
};

/// Whether freed memory is returned to the system.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsMemoryMeasurable = false;  // the sanitizers keep freed memory
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
constexpr bool kIsMemoryMeasurable = false;
#else
constexpr bool kIsMemoryMeasurable = true;
#endif
#else
constexpr bool kIsMemoryMeasurable = true;
#endif

/// Resident memory in kilobytes.
inline long residentMemory() {
    std::ifstream statistics("/proc/self/statm");
    long pages = 0;
    long resident_pages = 0;
    statistics >> pages >> resident_pages;
    return resident_pages * 4;
}

/// More if long tests are enabled in the environment.
inline std::size_t eventsToFeed() {
    const char* const wanted = std::getenv("KELVORA_LONG_TESTS");
    return wanted != nullptr && std::string(wanted) == "1" ? 50'000'000 : 2'000'000;
}

}  // namespace kelvora::test
