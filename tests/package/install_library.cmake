# SPDX-License-Identifier: MIT
# Installs the build:
# cmake -DBUILD_DIR=... -DCONFIG=... -DSOURCE_DIR=... -DPREFIX=... -DWITH_TOOL=... -DWITH_RECORDING=... -P install_library.cmake

# Moved after the installation, as a package has to work wherever it lies.
set(first_prefix "${PREFIX}-before-move")
file(REMOVE_RECURSE "${PREFIX}" "${first_prefix}")
set(components kelvora_runtime kelvora_development)
if(WITH_TOOL)
    list(APPEND components kelvora_tool)
endif()
if(WITH_RECORDING)
    list(APPEND components kelvora_recording_runtime)
endif()
foreach(component IN LISTS components)
    execute_process(
        COMMAND "${CMAKE_COMMAND}" --install "${BUILD_DIR}" --config "${CONFIG}"
            --prefix "${first_prefix}" --component ${component}
        COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(RENAME "${first_prefix}" "${PREFIX}")

file(GLOB wanted RELATIVE "${SOURCE_DIR}/include/kelvora" "${SOURCE_DIR}/include/kelvora/*")
list(APPEND wanted export.hpp version.hpp)
if(WITH_RECORDING)
    set(recording_dir "${SOURCE_DIR}/tools/recording/include/kelvora")
    file(GLOB recording_headers RELATIVE "${recording_dir}" "${recording_dir}/recording/*")
    list(APPEND wanted ${recording_headers} recording/export.hpp)
endif()
list(SORT wanted)
file(GLOB_RECURSE installed RELATIVE "${PREFIX}/include/kelvora" "${PREFIX}/include/kelvora/*")
list(SORT installed)
if(NOT installed STREQUAL wanted)
    message(FATAL_ERROR "Installed headers: ${installed}\nPublic headers: ${wanted}")
endif()

file(GLOB_RECURSE package_files "${PREFIX}/*.cmake" "${PREFIX}/*.pc")
foreach(package_file IN LISTS package_files)
    file(READ "${package_file}" text)
    if(text MATCHES "KELVORA_HARDENED")
        message(FATAL_ERROR "${package_file} mentions KELVORA_HARDENED, which concerns the library alone")
    endif()
    foreach(directory "${SOURCE_DIR}" "${BUILD_DIR}")
        string(FIND "${text}" "${directory}/" position)
        if(NOT position EQUAL -1)
            message(FATAL_ERROR "${package_file} mentions ${directory}, which is not there where it will be used")
        endif()
    endforeach()
endforeach()
