# SPDX-License-Identifier: MIT
# Headers that many sources include, compiled once. Sources then compile even if they lack an #include: builds without
# them find this.
set(KELVORA_PRECOMPILE_HEADERS OFF CACHE STRING "Compile headers that many sources include once: OFF, TESTS or ALL")
set_property(CACHE KELVORA_PRECOMPILE_HEADERS PROPERTY STRINGS OFF TESTS ALL)

# kelvora_add_precompiled_headers(NAME HEADERS ... OPTIONS ... LIBRARIES ...): for kelvora_use_precompiled_headers.
function(kelvora_add_precompiled_headers name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS;OPTIONS;LIBRARIES")
    file(CONFIGURE OUTPUT ${name}.cpp CONTENT "")
    add_library(${name} OBJECT "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
    # Clang writes the same file each time, as ccache needs it.
    target_compile_options(${name}
        PRIVATE ${arg_OPTIONS} "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
    set_target_properties(${name} PROPERTIES CXX_COMPILER_LAUNCHER "${PROJECT_SOURCE_DIR}/cmake/precompile")
endfunction()

# kelvora_use_precompiled_headers(TARGET NAME): for a target with the same compiler options.
function(kelvora_use_precompiled_headers target name)
    target_precompile_headers(${target} REUSE_FROM ${name})
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)  # for ccache
endfunction()
