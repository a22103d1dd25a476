// SPDX-License-Identifier: MIT
#include "recording/file_target.hpp"

#include <unistd.h>

#include <charconv>
#include <string>
#include <system_error>

namespace kelvora::recording {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40;  // as in Linux

/// The number of the open file for a name such as /dev/fd/1 or /proc/self/fd/1.
std::optional<int> descriptorOf(const fs::path& link) {
    std::error_code error;
    const fs::path directory = fs::canonical(link.parent_path(), error);
    if (error || directory != fs::canonical("/proc/self/fd", error)) {
        return std::nullopt;
    }
    const std::string name = link.filename().string();
    int descriptor = 0;
    const auto [end, problem] = std::from_chars(name.data(), name.data() + name.size(), descriptor);
    return problem == std::errc() ? std::optional(descriptor) : std::nullopt;
}

}  // namespace

FileTarget targetOf(const fs::path& path) {
    std::error_code error;
    fs::path target = fs::absolute(path, error);
    for (int links = 0; links < kMostLinks; ++links) {
        const fs::path next = fs::read_symlink(target, error);
        if (error) {
            break;
        }
        if (const auto descriptor = descriptorOf(target)) {
            return {target, descriptor};
        }
        target = target.parent_path() / next;
    }
    return {target};
}

FileTarget targetOfOutput(const fs::path& path) {
    return path == "-" ? FileTarget{path, STDOUT_FILENO} : targetOf(path);
}

}  // namespace kelvora::recording
