// SPDX-License-Identifier: MIT
#include "recording/input_buffer.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "kelvora/recording/recording_error.hpp"
#include "recording/coding/event_decoder.hpp"

namespace kelvora::recording {
namespace {

constexpr std::size_t kFirstSize = std::size_t{256} * 1024;

}  // namespace

InputBuffer::InputBuffer(const std::filesystem::path& path, const std::function<void()>& on_signal)
    : file(path, on_signal), buffer(kFirstSize) {}

bool InputBuffer::fill() {
    makeRoom();
    const std::size_t count = file.read(buffer.data() + end, buffer.size() - end);
    end += count;
    return count > 0;
}

bool InputBuffer::fillTo(std::size_t count) {
    while (unread().size() < count) {
        if (!fill()) {
            return false;
        }
    }
    return true;
}

void InputBuffer::makeRoom() {
    if (begin > 0) {
        std::memmove(buffer.data(), buffer.data() + begin, end - begin);
        end -= begin;
        begin = 0;
    }
    if (end < buffer.size()) {
        return;
    }
    if (buffer.size() >= kMaxItemBytes) {
        throw RecordingError(
            ErrorKind::Damaged, file.name(),
            fmt::format("contains an item of more than {} MiB", kMaxItemBytes >> 20U),
            {ErrorPlace::Unit::Byte, skipped}, "check that the file is not damaged");
    }
    buffer.resize(std::min(2 * buffer.size(), kMaxItemBytes));
}

}  // namespace kelvora::recording
