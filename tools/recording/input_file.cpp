// SPDX-License-Identifier: MIT
#include "recording/input_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "recording/recording_error.hpp"

namespace kelvora::recording {
namespace {

std::string systemMessage(int error) {
    return std::generic_category().message(error);
}

int openForReading(const std::string& name) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): the system offers no other way
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        const int error = errno;
        throw RecordingError(name, "cannot be opened (" + systemMessage(error) + ")", "",
                             error == EACCES ? "check its permissions" : "check the path");
    }
    return descriptor;
}

}  // namespace

InputFile::InputFile(const std::filesystem::path& path)
    : file_name(path.string()), descriptor(openForReading(file_name)) {
    struct stat status {};
    if (::fstat(descriptor, &status) != 0) {
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        ::close(descriptor);
        throw RecordingError(file_name, "is a directory", "", "name a file in it");
    }
    if (S_ISREG(status.st_mode)) {
        file_size = static_cast<std::uint64_t>(status.st_size);
    }
}

InputFile::~InputFile() {
    ::close(descriptor);
}

std::size_t InputFile::read(char* buffer, std::size_t size) {
    ssize_t count = 0;
    do {
        count = ::read(descriptor, buffer, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        throw RecordingError(file_name, "cannot be read (" + systemMessage(errno) + ")", "",
                             "check the disk or the connection");
    }
    return static_cast<std::size_t>(count);
}

}  // namespace kelvora::recording
