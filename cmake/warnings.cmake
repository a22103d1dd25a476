# SPDX-License-Identifier: MIT
# Warnings are the developers' concern: a project that includes this one is compiled without them.
add_library(kelvora_warnings INTERFACE)
if(PROJECT_IS_TOP_LEVEL)
    target_compile_options(kelvora_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
endif()
