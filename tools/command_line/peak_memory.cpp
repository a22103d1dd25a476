// SPDX-License-Identifier: MIT
#include "command_line/peak_memory.hpp"

#include <fstream>
#include <string>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace kelvora::tool {

bool resetPeakMemory() {
#ifdef __GLIBC__
    static_cast<void>(malloc_trim(0));
#endif
    // 5 resets the peak to the current resident size, see proc(5).
    std::ofstream file("/proc/self/clear_refs");
    file << "5" << std::flush;
    return file.good();
}

std::optional<std::uint64_t> peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        std::uint64_t kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes) {
            return kilobytes * 1024;
        }
    }
    return std::nullopt;
}

}  // namespace kelvora::tool
