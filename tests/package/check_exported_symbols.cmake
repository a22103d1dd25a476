# SPDX-License-Identifier: MIT
# The library exports its interface and none of its internals:
# cmake -DNM=... -DLIBRARY=... -DINCLUDE_DIR=... -DCXX_FLAGS=... -P check_exported_symbols.cmake

if(CXX_FLAGS MATCHES "-fsanitize|--coverage|-fprofile")
    message("Skipped: instrumentation exports symbols of its own")
    return()
endif()

# Lines "ADDRESS TYPE NAME", the names as the linker sees them; TYPE and NAME are kept.
execute_process(
    COMMAND "${NM}" --dynamic --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE output
    COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " [A-Za-z] [^\n]+" symbols "${output}")
list(TRANSFORM symbols STRIP)

file(GLOB headers "${INCLUDE_DIR}/kelvora/*.hpp")
set(interface "")
foreach(header IN LISTS headers)
    file(READ "${header}" text)
    string(APPEND interface "${text}")
endforeach()

# Names follow their length; operators have none.
set(own "^[A-Zu] _Z(T[ISV])?NK?7kelvora(([0-9]+)([A-Za-z0-9_]+))?")
set(by_the_linker "^[A-Z] (__bss_start|_edata|_end|_init|_fini)$")

set(own_count 0)
set(unwanted "")
foreach(symbol IN LISTS symbols)
    if(symbol MATCHES "${own}")
        math(EXPR own_count "${own_count} + 1")
        if(CMAKE_MATCH_3)
            string(SUBSTRING "${CMAKE_MATCH_4}" 0 ${CMAKE_MATCH_3} name)
            if(NOT interface MATCHES "[^A-Za-z0-9_]${name}[^A-Za-z0-9_]")
                list(APPEND unwanted "${symbol}")
            endif()
        endif()
    elseif(NOT symbol MATCHES "${by_the_linker}")
        list(APPEND unwanted "${symbol}")
    endif()
    if(symbol MATCHES "4Impl|__KDPointAdaptor")
        list(APPEND unwanted "${symbol}")
    endif()
endforeach()

list(LENGTH symbols count)
message("${count} exported symbols, ${own_count} of them kelvora's")
if(own_count LESS 10)
    message(FATAL_ERROR "The interface is not exported")
endif()
if(unwanted)
    list(JOIN unwanted "\n" unwanted)
    message(FATAL_ERROR "Exported, but not part of the interface:\n${unwanted}")
endif()
