// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>

#include <filesystem>

#include "recording/file_target.hpp"

namespace kelvora::recording {

/// Distinguishes files independently of their names: hard links to a file are equal, and so are
/// two paths to a file that does not exist yet.
class FileIdentity {
public:
    explicit FileIdentity(const FileTarget& target);

    /// Whether this is a device such as /dev/null, or a socket: several outputs may share it.
    bool isDevice() const { return S_ISCHR(mode) || S_ISSOCK(mode); }

    bool operator==(const FileIdentity& other) const;

private:
    dev_t device = 0;
    ino_t number = 0;
    mode_t mode = 0;
    std::filesystem::path missing;  ///< Relative to the directory `number`, if not empty.
};

}  // namespace kelvora::recording
