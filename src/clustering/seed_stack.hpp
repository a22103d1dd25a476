// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kelvora {

/// A stack of numbers below n that holds each number at most once: pushing a number again moves it
/// to the top. Numbers are popped in the same order as from a stack that keeps all copies and skips
/// the ones seen before. Such a stack would grow with the neighbours of all points, to gigabytes in
/// dense data; this one has a fixed size.
///
/// Pushing a number again leaves the old entry in place: only the latest entry of a number is
/// valid. When the stack is full, invalid entries are removed, which takes constant time per push
/// on average. A doubly linked list would remove the old entry at once, but write to four places
/// instead of two.
class SeedStack {
public:
    /// Most numbers that it can hold.
    static constexpr std::size_t kMostHeld = std::size_t{1} << 30;

    /// Empties the stack, and makes room for at most `most_held` different numbers below `n`.
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

    /// Must be called directly after `empty` has returned false.
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
    std::vector<std::uint32_t> last_entry;  ///< Of each number; undefined if it is not held.
    std::uint32_t count = 0;
};

}  // namespace kelvora
