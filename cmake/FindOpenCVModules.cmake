# SPDX-License-Identifier: MIT
#[[
Finds single modules of OpenCV: find_package(OpenCVModules 4.0 COMPONENTS core imgproc).

Each module M becomes the target OpenCVModules::M. If OpenCV's package configuration is installed, it is used. Debian
ships it only in libopencv-dev, which pulls in several hundred packages. Without it, this module looks up headers and
libraries directly.

OpenCVModules_STATUS describes the modules found or missing.
]]

function(kelvora_read_opencv_version include_dir result)
    set(version "")
    set(header "${include_dir}/opencv2/core/version.hpp")
    if(EXISTS "${header}")
        file(STRINGS "${header}" lines REGEX "define CV_VERSION_(MAJOR|MINOR|REVISION)")
        string(REGEX REPLACE "[^0-9;]" "" numbers "${lines}")
        list(JOIN numbers "." version)
    endif()
    set(${result} "${version}" PARENT_SCOPE)
endfunction()

find_package(OpenCV QUIET COMPONENTS ${OpenCVModules_FIND_COMPONENTS})
if(OpenCV_FOUND)
    set(OpenCVModules_VERSION "${OpenCV_VERSION}")
    set(OpenCVModules_STATUS "found ${OpenCV_VERSION}")
    foreach(module IN LISTS OpenCVModules_FIND_COMPONENTS)
        set(OpenCVModules_${module}_FOUND TRUE)
        if(NOT TARGET OpenCVModules::${module})
            add_library(OpenCVModules::${module} INTERFACE IMPORTED)
            target_link_libraries(OpenCVModules::${module} INTERFACE opencv_${module})
        endif()
    endforeach()
else()
    # Debian splits the headers: headers that differ between architectures lie in a separate directory.
    find_path(OpenCVModules_INCLUDE_DIR opencv2/core/version.hpp PATH_SUFFIXES opencv4)
    find_path(OpenCVModules_CONFIG_INCLUDE_DIR opencv2/opencv_modules.hpp PATH_SUFFIXES opencv4)
    mark_as_advanced(OpenCVModules_INCLUDE_DIR OpenCVModules_CONFIG_INCLUDE_DIR)
    kelvora_read_opencv_version("${OpenCVModules_INCLUDE_DIR}" OpenCVModules_VERSION)
    set(OpenCVModules_STATUS "none was found")
    if(OpenCVModules_VERSION)
        set(OpenCVModules_STATUS "found ${OpenCVModules_VERSION}")
    endif()
    foreach(module IN LISTS OpenCVModules_FIND_COMPONENTS)
        find_path(OpenCVModules_${module}_HEADER opencv2/${module}.hpp PATH_SUFFIXES opencv4)
        find_library(OpenCVModules_${module}_LIBRARY opencv_${module})
        mark_as_advanced(OpenCVModules_${module}_HEADER OpenCVModules_${module}_LIBRARY)
        if(OpenCVModules_${module}_HEADER AND OpenCVModules_${module}_LIBRARY)
            set(OpenCVModules_${module}_FOUND TRUE)
            if(NOT TARGET OpenCVModules::${module})
                add_library(OpenCVModules::${module} UNKNOWN IMPORTED)
                set_target_properties(OpenCVModules::${module} PROPERTIES
                    IMPORTED_LOCATION "${OpenCVModules_${module}_LIBRARY}"
                    INTERFACE_INCLUDE_DIRECTORIES
                        "${OpenCVModules_INCLUDE_DIR};${OpenCVModules_CONFIG_INCLUDE_DIR}")
            endif()
        elseif(OpenCVModules_VERSION)
            string(APPEND OpenCVModules_STATUS ", without module ${module}")
        endif()
    endforeach()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OpenCVModules
    REQUIRED_VARS OpenCVModules_VERSION
    VERSION_VAR OpenCVModules_VERSION
    HANDLE_COMPONENTS
    REASON_FAILURE_MESSAGE "${OpenCVModules_STATUS}")
