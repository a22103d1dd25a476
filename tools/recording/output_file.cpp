// SPDX-License-Identifier: MIT
#include "recording/output_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

constexpr int kClosed = -1;
constexpr mode_t kPermissions = 0666;  // reduced by the user's umask

RecordingError errorOf(const std::string& name, const std::string& problem,
                       const std::string& remedy) {
    return {ErrorKind::NoAccess,
            name,
            problem + " (" + std::generic_category().message(errno) + ")",
            {},
            remedy};
}

int openForWriting(const std::string& name) {
    // A duplicate, so that closing it does not close standard output.
    if (name == "-") {
        return ::dup(STDOUT_FILENO);
    }
    return ::open(name.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kPermissions);
}

}  // namespace

OutputFile::OutputFile(const std::filesystem::path& path)
    : file_name(path.string()), descriptor(openForWriting(file_name)) {
    if (descriptor < 0) {
        throw errorOf(file_name, "cannot be created", "check the path and its permissions");
    }
}

OutputFile::~OutputFile() {
    if (descriptor != kClosed) {
        ::close(descriptor);
    }
}

void OutputFile::write(Bytes bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            throw errorOf(file_name, "cannot be written", "check the free space of the disk");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void OutputFile::close() {
    if (descriptor == kClosed) {
        return;
    }
    const int result = ::close(descriptor);
    descriptor = kClosed;
    if (result != 0) {
        throw errorOf(file_name, "cannot be written", "check the free space of the disk");
    }
}

}  // namespace kelvora::recording
