// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Number of rounds of tests with random input.

namespace kelvora::test {

/// All rounds, or a fourth of them in builds with sanitizers, in which a round takes many times
/// longer. Few rounds reach all code; the release build compares the results of all.
template <typename Number>
constexpr Number rounds(Number all) {
#ifdef KELVORA_FEWER_ROUNDS
    return all / 4;
#else
    return all;
#endif
}

}  // namespace kelvora::test
