// SPDX-License-Identifier: MIT
#pragma once

#include <sys/stat.h>

#include <filesystem>
#include <optional>

namespace kelvora::recording {

/// When the name of a complete file reaches the disk.
enum class NameSync {
    Now,
    Later  ///< With `syncNames`, for all files of a directory at once.
};

/// Writes the names of a directory's files to the disk. A failure does not matter to files that are
/// complete.
void syncNames(const std::filesystem::path& directory);

/// A file that is being written beside its final name, as `.NAME.unfinished-PID`. Until it is
/// complete, a file of the final name stays as it is. After a kill, the unfinished file remains.
///
/// Functions that fail throw `std::system_error`.
class PendingFile {
public:
    /// Creates the unfinished file.
    ///
    /// \param target_  The final name, not a symbolic link.
    /// \param replaced  The file of that name, if there is one. The new file gets its permissions.
    PendingFile(std::filesystem::path target_, const std::optional<struct stat>& replaced);

    /// Leaves the unfinished file, if none of the functions below has ended it.
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    int descriptor() const { return file; }

    /// Writes everything to the disk, and gives the file its final name.
    ///
    /// \param overwrite  Whether to replace a file of that name. If not, that is an error.
    void complete(bool overwrite, NameSync sync = NameSync::Now);

    /// Names the file `NAME.partial`, or `NAME.partial.2` and so on if there is one already.
    ///
    /// \return The name.
    std::filesystem::path keep();

    /// Removes the file.
    void remove();

private:
    std::filesystem::path target;
    std::filesystem::path unfinished;
    int file;
};

}  // namespace kelvora::recording
