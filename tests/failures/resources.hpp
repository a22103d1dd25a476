// SPDX-License-Identifier: MIT
#pragma once

/// \file
/// Resources that a program has to return.

namespace kelvora::failures {

/// Descriptors from this number on belong to the library that makes calls fail.
constexpr int kFirstOwnDescriptor = 200;

/// Number of open descriptors of the program.
int openDescriptors();

/// Number of allocations of the C library since the start that have not been freed.
long unfreedAllocations();

}  // namespace kelvora::failures
