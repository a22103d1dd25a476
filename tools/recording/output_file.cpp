// SPDX-License-Identifier: MIT
#include "recording/output_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <system_error>
#include <utility>

#include "kelvora/recording/recording_error.hpp"
#include "recording/file_target.hpp"

namespace kelvora::recording {
namespace {

constexpr int kClosed = -1;

const char* remedyFor(int error) {
    switch (error) {
        case ENOSPC:
        case EDQUOT:
            return "check the free space of the disk";
        case EFBIG:
            return "check the limit on the size of files";
        case EPIPE:
            return "check the program that reads it";
        case EBADF:
            return "check that it is open";
        case EIO:
            return "check the disk or the connection";
        default:
            return "check the path and its permissions";
    }
}

const char* remedyForDirectory(int error) {
    return error == EACCES ? "check the permissions of its directory" : remedyFor(error);
}

[[noreturn]] void fail(const std::string& name, const std::string& problem, int error,
                       const char* remedy) {
    throw RecordingError(error == EPIPE ? ErrorKind::ReaderEnded : ErrorKind::NoAccess, name,
                         problem + " (" + std::generic_category().message(error) + ")", {}, remedy);
}

[[noreturn]] void failToWrite(const std::string& name, int error) {
    fail(name, "cannot be written", error, remedyFor(error));
}

[[noreturn]] void refuseExisting(const std::string& name) {
    throw RecordingError(ErrorKind::NoAccess, name, "exists already", {}, "choose another name");
}

}  // namespace

OutputFile::OutputFile(const std::filesystem::path& path, WriteOptions options_)
    : file_name(path == "-" ? "standard output" : path.string()), options(std::move(options_)) {
    const FileTarget target = targetOfOutput(path);
    if (!target.descriptor) {
        open(target.path);
        return;
    }
    // A duplicate, so that closing it does not close standard output.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): there is no other interface
    descriptor = ::fcntl(*target.descriptor, F_DUPFD_CLOEXEC, 0);
    if (descriptor < 0) {
        failToWrite(file_name, errno);
    }
}

OutputFile::~OutputFile() {
    keep();
}

void OutputFile::open(const std::filesystem::path& target) {
    openExisting(target);
    std::optional<struct stat> replaced;
    if (descriptor != kClosed) {
        if (::fstat(descriptor, &replaced.emplace()) != 0 || !S_ISREG(replaced->st_mode)) {
            return;
        }
        ::close(std::exchange(descriptor, kClosed));
        if (!options.overwrite) {
            refuseExisting(file_name);
        }
    }
    try {
        pending.emplace(target, replaced);
        descriptor = pending->descriptor();
    } catch (const std::system_error& error) {
        const int number = error.code().value();
        fail(file_name, replaced ? "cannot be replaced" : "cannot be created", number,
             remedyForDirectory(number));
    }
}

/// Opens a device or pipe, or finds out whether a file may be written.
void OutputFile::openExisting(const std::filesystem::path& target) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): there is no other interface
    while ((descriptor = ::open(target.c_str(), O_WRONLY | O_CLOEXEC)) < 0) {
        if (errno == EINTR) {
            handleSignal();
        } else if (errno == ENOENT && target.has_filename()) {
            return;
        } else {
            fail(file_name, "cannot be created", errno, remedyFor(errno));
        }
    }
}

void OutputFile::writeHeader(Bytes bytes) {
    write(bytes);
    has_content = false;
}

void OutputFile::write(Bytes bytes) {
    is_damaged = true;  // until all bytes are written
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count >= 0) {
            has_content = true;
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno == EINTR) {
            handleSignal();
        } else {
            failToWrite(file_name, errno);
        }
    }
    is_damaged = false;
}

void OutputFile::close(NameSync sync) {
    if (is_damaged) {
        keep();
        return;
    }
    is_damaged = true;  // until everything has been done
    if (pending) {
        complete(sync);
    } else if (descriptor != kClosed && ::close(std::exchange(descriptor, kClosed)) != 0) {
        failToWrite(file_name, errno);
    }
    is_damaged = false;
}

void OutputFile::complete(NameSync sync) {
    try {
        pending->complete(options.overwrite, sync);
    } catch (const std::system_error& error) {
        if (error.code().value() == EEXIST) {
            refuseExisting(file_name);
        }
        failToWrite(file_name, error.code().value());
    }
    pending.reset();
    descriptor = kClosed;
}

void OutputFile::keep() noexcept {
    try {
        if (pending && has_content) {
            const std::filesystem::path kept = pending->keep();
            if (options.on_partial) {
                options.on_partial(kept);
            }
        } else if (pending) {
            pending->remove();
        } else if (descriptor != kClosed) {
            ::close(descriptor);
        }
    } catch (...) {
        // A file that cannot be renamed or removed keeps its unfinished name.
        static_cast<void>(std::current_exception());
    }
    pending.reset();
    descriptor = kClosed;
}

void OutputFile::handleSignal() const {
    if (options.on_signal) {
        options.on_signal();
    }
}

}  // namespace kelvora::recording
