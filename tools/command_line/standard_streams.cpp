// SPDX-License-Identifier: MIT
#include "command_line/standard_streams.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <initializer_list>

#include "recording/output_file.hpp"

namespace kelvora::tool {

void occupyStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): there is no other interface
        if (::fcntl(stream, F_GETFD) < 0) {
            // Opened the wrong way round, so that using it fails. The lowest free number is this one.
            const int mode = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
            // NOLINTNEXTLINE(cppcoreguidelines-pro-type-vararg): there is no other interface
            static_cast<void>(::open("/dev/null", mode));
        }
    }
}

void print(std::string_view text) {
    recording::OutputFile output("-");
    output.write(text);
    output.close();
}

void printError(std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t count = ::write(STDERR_FILENO, text.data(), text.size());
        if (count >= 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return;
        }
    }
}

}  // namespace kelvora::tool
