// SPDX-License-Identifier: MIT
#include "recording/pending_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

namespace kelvora::recording {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kPermissions = 0666;  // reduced by the user's umask
constexpr mode_t kPermissionBits = 0777;

void require(bool is_done) {
    if (!is_done) {
        throw std::system_error(errno, std::generic_category());
    }
}

/// A name in the same directory. Long names are cut, because the ending must fit.
fs::path beside(const fs::path& target, const std::string& beginning, const std::string& ending) {
    const std::string name = target.filename().string();
    const std::size_t room = NAME_MAX - beginning.size() - ending.size();
    return target.parent_path() / (beginning + name.substr(0, room) + ending);
}

/// Adds ".2", ".3" and so on to an ending.
std::string numbered(const std::string& ending, int number) {
    return number == 1 ? ending : ending + "." + std::to_string(number);
}

int createUnfinished(const fs::path& target, fs::path& unfinished) {
    const std::string ending = ".unfinished-" + std::to_string(::getpid());
    for (int number = 1;; ++number) {
        unfinished = beside(target, ".", numbered(ending, number));
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): there is no other interface
        const int file =
            ::open(unfinished.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kPermissions);
        if (file >= 0) {
            return file;
        }
        // After a signal, the next number will do, too.
        require(errno == EEXIST || errno == EINTR);
    }
}

bool renameToNewName(const fs::path& from, const fs::path& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return true;
    }
    // Not every file system knows this way of renaming.
    if (errno != EINVAL && errno != ENOSYS) {
        return false;
    }
    return ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0;
}

}  // namespace

void syncNames(const fs::path& directory) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): there is no other interface
    const int opened = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened >= 0) {
        static_cast<void>(::fsync(opened));
        ::close(opened);
    }
}

PendingFile::PendingFile(fs::path target_, const std::optional<struct stat>& replaced)
    : target(std::move(target_)), file(createUnfinished(target, unfinished)) {
    if (replaced) {
        // File systems without owners and permissions refuse both.
        static_cast<void>(::fchown(file, replaced->st_uid, replaced->st_gid) == 0);
        static_cast<void>(::fchmod(file, replaced->st_mode & kPermissionBits));
    }
}

PendingFile::~PendingFile() {
    ::close(file);
}

void PendingFile::complete(bool overwrite, NameSync sync) {
    // File systems that cannot sync say EINVAL.
    require(::fsync(file) == 0 || errno == EINVAL);
    require(overwrite ? ::rename(unfinished.c_str(), target.c_str()) == 0
                      : renameToNewName(unfinished, target));
    if (sync == NameSync::Now) {
        syncNames(target.parent_path());
    }
}

fs::path PendingFile::keep() {
    for (int number = 1;; ++number) {
        fs::path name = beside(target, "", numbered(".partial", number));
        if (renameToNewName(unfinished, name)) {
            return name;
        }
        require(errno == EEXIST);
    }
}

void PendingFile::remove() {
    require(::unlink(unfinished.c_str()) == 0);
}

}  // namespace kelvora::recording
