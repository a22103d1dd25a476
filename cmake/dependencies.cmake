# SPDX-License-Identifier: MIT
# Finds the dependencies of the library, or stops with the name and version of the package to install.

find_package(OpenCVModules 4.0 QUIET COMPONENTS core)
if(NOT OpenCVModules_FOUND)
    message(FATAL_ERROR
        "kelvora needs the core module of OpenCV 4.0 or later (${OpenCVModules_STATUS}). "
        "On Debian: apt install libopencv-core-dev")
endif()

find_package(nanoflann 1.5 CONFIG QUIET)
if(NOT nanoflann_FOUND)
    set(found "none was found")
    if(nanoflann_CONSIDERED_VERSIONS)
        set(found "found ${nanoflann_CONSIDERED_VERSIONS}")
    endif()
    message(FATAL_ERROR
        "kelvora needs nanoflann 1.5 or later (${found}). On Debian: libnanoflann-dev 1.5 or later, which "
        "scripts/install_dependencies also installs on Debian 12, whose own package is too old")
endif()

find_package(Threads REQUIRED)
