// SPDX-License-Identifier: MIT
#include "recording/input_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "kelvora/recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

std::string systemMessage(int error) {
    return std::generic_category().message(error);
}

/// Repeats a system call while signals interrupt it.
template <class Call>
auto callThroughSignals(const Call& call, const std::function<void()>& on_signal) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        if (on_signal) {
            on_signal();
        }
        result = call();
    }
    return result;
}

int openForReading(const std::string& name, const std::function<void()>& on_signal) {
    const int descriptor = callThroughSignals(
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): there is no other interface
        [&] { return ::open(name.c_str(), O_RDONLY | O_CLOEXEC); }, on_signal);
    if (descriptor < 0) {
        const int error = errno;
        throw RecordingError(ErrorKind::NoAccess, name,
                             "cannot be opened (" + systemMessage(error) + ")", {},
                             error == EACCES ? "check its permissions" : "check the path");
    }
    return descriptor;
}

}  // namespace

InputFile::InputFile(const std::filesystem::path& path, std::function<void()> on_signal_)
    : file_name(path.string()),
      on_signal(std::move(on_signal_)),
      descriptor(openForReading(file_name, on_signal)) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        ::close(descriptor);
        throw RecordingError(ErrorKind::NoAccess, file_name, "is a directory", {},
                             "give a file in it");
    }
    if (S_ISREG(status.st_mode)) {
        file_size = static_cast<std::uint64_t>(status.st_size);
    }
}

InputFile::~InputFile() {
    ::close(descriptor);
}

std::size_t InputFile::read(char* buffer, std::size_t size) {
    const ssize_t count =
        callThroughSignals([&] { return ::read(descriptor, buffer, size); }, on_signal);
    if (count < 0) {
        throw RecordingError(ErrorKind::NoAccess, file_name,
                             "cannot be read (" + systemMessage(errno) + ")", {},
                             "check the disk or the connection");
    }
    return static_cast<std::size_t>(count);
}

}  // namespace kelvora::recording
