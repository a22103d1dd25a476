# SPDX-License-Identifier: MIT
# Clang's shared sanitizer runtime lies in a directory of the compiler, where no program looks. It is shared so that
# Python, which is not instrumented, can load it first, and so that tests can replace functions of the whole program.
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND CMAKE_CXX_FLAGS MATCHES "-shared-libsan")
    execute_process(
        COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=libclang_rt.asan-${CMAKE_SYSTEM_PROCESSOR}.so
        OUTPUT_VARIABLE KELVORA_SANITIZER_RUNTIME
        OUTPUT_STRIP_TRAILING_WHITESPACE
        COMMAND_ERROR_IS_FATAL ANY)
    if(NOT EXISTS "${KELVORA_SANITIZER_RUNTIME}")
        message(FATAL_ERROR "Clang's sanitizers need their runtime. On Debian: apt install libclang-rt-dev")
    endif()
    cmake_path(GET KELVORA_SANITIZER_RUNTIME PARENT_PATH runtime_dir)
    foreach(kind IN ITEMS EXE SHARED MODULE)
        string(APPEND CMAKE_${kind}_LINKER_FLAGS " -Wl,-rpath,${runtime_dir}")
    endforeach()
endif()

set(KELVORA_HOT_CODE_OPTIONS "" CACHE STRING
    "Further compiler options for the libraries that every event runs through, which sanitized builds still optimise")
