// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kelvora::tool {

/// A file of a command.
struct NamedFile {
    std::string name;  ///< The option that names it, for messages.
    std::filesystem::path path;
};

/// The files of a command. Empty paths do not count.
struct CommandFiles {
    std::vector<NamedFile> inputs;
    std::vector<NamedFile> outputs;    ///< "-" is standard output.
    std::filesystem::path frames_dir;  ///< Directory of the pictures of windows.
};

/// Refuses files that would destroy or mix each other: an output that is also an input, two outputs
/// in one file. Different paths to a file, through links and directories, are recognised. Where
/// standard output and standard error lead is compared, too. Several outputs may share a device
/// such as /dev/null.
///
/// \throws UsageError  that names both files.
void checkFiles(const CommandFiles& files);

}  // namespace kelvora::tool
