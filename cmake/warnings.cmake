# SPDX-License-Identifier: MIT
# Warnings are for developers of Kelvora: a project that includes Kelvora compiles it without them.
add_library(kelvora_warnings INTERFACE)
if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(kelvora_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow
        $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>)
endif()
