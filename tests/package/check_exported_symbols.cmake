# SPDX-License-Identifier: MIT
# The library exports the symbols in the list, and none of its internals:
# cmake -DNM=... -DLIBRARY=... -DNAMESPACE=... -DINCLUDE_DIR=... -DLIST=... -DACTUAL=... -DCXX_FLAGS=... -P check_exported_symbols.cmake
# The exported symbols are written to the file ACTUAL.

if(CXX_FLAGS MATCHES "-fsanitize|--coverage|-fprofile")
    message("Skipped: instrumentation exports additional symbols")
    return()
endif()

# Lines "ADDRESS TYPE NAME"; constructors come several times.
execute_process(
    COMMAND "${NM}" --dynamic --demangle --defined-only "${LIBRARY}"
    OUTPUT_VARIABLE output
    COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL " [A-Za-z] [^\n]+" exported "${output}")
list(TRANSFORM exported REPLACE "^ [A-Za-z] " "")
list(FILTER exported EXCLUDE REGEX "^(__bss_start|_edata|_end|_init|_fini)$")
list(REMOVE_DUPLICATES exported)
list(SORT exported)
list(JOIN exported "\n" text)
file(WRITE "${ACTUAL}" "${text}\n")

file(GLOB headers "${INCLUDE_DIR}/*.hpp")
foreach(header IN LISTS headers)
    file(READ "${header}" header_text)
    string(APPEND public_text "${header_text}")
endforeach()

# No internals, even if they are in the list. Instantiations of function templates begin with their return type.
set(own "^(vtable for |typeinfo for |typeinfo name for |[a-z ]+ )?${NAMESPACE}::([A-Za-z0-9_]+)")
set(private "::(Impl|Index|Engines|__KDPointAdaptor)(::|$)")
foreach(symbol IN LISTS exported)
    if(NOT symbol MATCHES "${own}"
            OR NOT public_text MATCHES "[^A-Za-z0-9_]${CMAKE_MATCH_2}[^A-Za-z0-9_]"
            OR symbol MATCHES "${private}")
        string(APPEND internals "    ${symbol}\n")
    endif()
endforeach()
if(internals)
    message(FATAL_ERROR "Exported, but not part of the interface:\n${internals}")
endif()

file(STRINGS "${LIST}" wanted)
set(added ${exported})
list(REMOVE_ITEM added ${wanted})
set(removed ${wanted})
list(REMOVE_ITEM removed ${exported})
list(TRANSFORM added PREPEND "    + ")
list(TRANSFORM removed PREPEND "    - ")

list(LENGTH exported count)
message("${count} exported symbols")
if(added OR removed)
    list(JOIN added "\n" added)
    list(JOIN removed "\n" removed)
    message(FATAL_ERROR
        "The exported symbols differ from ${LIST}, more (+) or less (-):\n${added}\n${removed}\n"
        "Programs that use removed symbols cannot start. If the change is intended, mention it in the changelog, and\n"
        "    cp ${ACTUAL} ${LIST}\n")
endif()
