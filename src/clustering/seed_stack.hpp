// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora {

/// A stack of numbers below n, each of which it holds at most once: pushing one again moves it to the
/// top. Taken from the top, numbers come in the same order as from a stack that keeps all copies and
/// whose reader skips those it has seen. But such a stack grows with the number of all neighbours of
/// all points, to gigabytes in dense data, and this one does not grow.
///
/// Pushing again leaves the old entry where it is, to be skipped: an entry counts if it is the last
/// one of its number. When the room is used up, entries that do not count are dropped, which takes
/// constant time per push. A list linked in both directions would take out the old entry at once, and
/// have four places to write to instead of two.
class SeedStack {
public:
    /// The most numbers it holds.
    static constexpr std::size_t kMostHeld = std::size_t{1} << 30;

    /// Empties the stack and makes room for numbers below n, so many at most at a time.
    void reset(std::size_t n, std::size_t most_held) {
        entries.resize(kRoomPerNumber * most_held);
        last_entry.resize(n);
        count = 0;
    }

    bool empty() {
        while (count > 0 && last_entry[entries[count - 1]] != count - 1) {
            --count;
        }
        return count == 0;
    }

    void push(std::uint32_t i) {
        if (count == entries.size()) {
            dropOldEntries();
        }
        entries[count] = i;
        last_entry[i] = count++;
    }

    /// Not from an empty stack, and only after `empty` was asked.
    std::uint32_t pop() { return entries[--count]; }

private:
    static constexpr std::size_t kRoomPerNumber = 3;

    void dropOldEntries() {
        std::uint32_t kept = 0;
        for (std::uint32_t entry = 0; entry < count; ++entry) {
            const std::uint32_t i = entries[entry];
            if (last_entry[i] == entry) {
                entries[kept] = i;
                last_entry[i] = kept++;
            }
        }
        count = kept;
    }

    std::vector<std::uint32_t> entries;
    std::vector<std::uint32_t> last_entry;  ///< Of each number; of no meaning if it is not in.
    std::uint32_t count = 0;
};

}  // namespace kelvora
