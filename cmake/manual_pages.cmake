# SPDX-License-Identifier: MIT
# Manual pages for the tool: kelvora(1) and one per command.
find_program(HELP2MAN help2man)
if(NOT HELP2MAN)
    message(FATAL_ERROR "The manual pages need help2man. On Debian: apt install help2man")
endif()

set(manual_dir "${PROJECT_BINARY_DIR}/manual")
file(MAKE_DIRECTORY "${manual_dir}")
set(pages "")
foreach(command IN ITEMS "" info cluster simulate score bench)
    string(REGEX REPLACE "-$" "" page "kelvora-${command}")
    set(page "${manual_dir}/${page}.1.gz")
    add_custom_command(OUTPUT "${page}"
        COMMAND "${PROJECT_SOURCE_DIR}/cmake/manual_page.sh"
            "${HELP2MAN}" "$<TARGET_FILE:kelvora_tool>" "${PROJECT_VERSION}" "${page}" ${command}
        DEPENDS kelvora_tool "${PROJECT_SOURCE_DIR}/cmake/manual_page.sh"
        VERBATIM)
    list(APPEND pages "${page}")
endforeach()
add_custom_target(kelvora_manual ALL DEPENDS ${pages})
install(FILES ${pages} DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT kelvora_tool)
