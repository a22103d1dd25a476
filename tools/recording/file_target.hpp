// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>

namespace kelvora::recording {

/// The place to which a path leads after all symbolic links, whether or not a file is there.
struct FileTarget {
    /// Absolute, and not a symbolic link, unless `descriptor` is set.
    std::filesystem::path path;

    /// The open file that the path stands for, as `/dev/stdout` does.
    std::optional<int> descriptor = {};
};

/// Follows the symbolic links of a path. Links without end are left as they are: opening them fails.
FileTarget targetOf(const std::filesystem::path& path);

/// Like `targetOf`, but "-" is standard output.
FileTarget targetOfOutput(const std::filesystem::path& path);

}  // namespace kelvora::recording
