# SPDX-License-Identifier: MIT
# Debian packages: `cpack -G DEB` in a build directory configured as in scripts/package. The names follow Debian's
# rules: the name of the library includes the version of its binary interface.

# The description of the binary interface comes from debug information, which the packages leave out. Paths in it begin
# at the root of the repository, so that the location of the checkout does not matter.
target_compile_options(kelvora PRIVATE -g "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
foreach(target IN ITEMS kelvora_recording_files kelvora_recording_objects)
    target_compile_options(${target} PRIVATE -g "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
endforeach()

set(CPACK_PACKAGE_CONTACT "The Kelvora authors <kelvora@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(debian_version "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")

# Dependencies on other packages are derived from the binaries. Dependencies between the packages made here are stated
# below, because the system does not know these packages yet.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/src" "${PROJECT_BINARY_DIR}/tools/recording")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

# Debian requires a changelog in its format.
set(debian_dir "${PROJECT_BINARY_DIR}/debian")
string(TIMESTAMP build_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(changelog "${debian_dir}/changelog.Debian")
file(CONFIGURE OUTPUT "${changelog}" CONTENT
"kelvora (@debian_version@) unstable; urgency=medium

  * See CHANGELOG.md in the sources.

 -- @CPACK_PACKAGE_CONTACT@  @build_date@
" @ONLY)
execute_process(
    COMMAND gzip -9n --force --keep "${changelog}"
    COMMAND_ERROR_IS_FATAL ANY)

# kelvora_package(COMPONENT NAME SECTION DEPENDS SUMMARY TEXT): makes a package from one component of the installation.
set(about "Kelvora finds clusters of activity (moving objects, blobs, flickering lights)
in the output of event cameras, by grid, density or centroid, and follows them.\n.\n")
function(kelvora_package component name section depends summary text)
    string(TOUPPER "CPACK_DEBIAN_${component}" prefix)
    set(${prefix}_PACKAGE_NAME "${name}" PARENT_SCOPE)
    set(${prefix}_PACKAGE_SECTION "${section}" PARENT_SCOPE)
    set(${prefix}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
    set(${prefix}_DESCRIPTION "clustering of event camera output - ${summary}\n${about}${text}" PARENT_SCOPE)
    set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)

    # Only for packages: a plain installation does not need these.
    set(doc_dir "${CMAKE_INSTALL_DATAROOTDIR}/doc/${name}")
    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" RENAME copyright
        DESTINATION "${doc_dir}" COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES "${changelog}.gz"
        DESTINATION "${doc_dir}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()

set(library "libkelvora${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
kelvora_package(kelvora_runtime ${library} libs
    ""
    "shared library"
    "This package contains the shared library that programs need to run.")
file(WRITE "${debian_dir}/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_KELVORA_RUNTIME_PACKAGE_CONTROL_EXTRA "${debian_dir}/triggers")
set(recording_library "libkelvora-recording${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}")
kelvora_package(kelvora_recording_runtime ${recording_library} libs
    "${library} (>= ${debian_version})"
    "shared library for recordings"
    "This package contains the shared library that reads and writes recordings.")
set(CPACK_DEBIAN_KELVORA_RECORDING_RUNTIME_PACKAGE_CONTROL_EXTRA "${debian_dir}/triggers")
kelvora_package(kelvora_development libkelvora-dev libdevel
    "${library} (= ${debian_version}), ${recording_library} (= ${debian_version}), libopencv-core-dev, libnanoflann-dev (>= 1.5)"
    "development files"
    "This package contains the headers, and the files by which CMake and pkg-config\nfind them.")
if(KELVORA_BUILD_TOOLS)
    include(cmake/manual_pages.cmake)
    kelvora_package(kelvora_tool kelvora science
        "${library} (>= ${debian_version}), ${recording_library} (>= ${debian_version})"
        "command-line tool"
        "This package contains the tool, which clusters recordings, summarises\nthem, simulates scenes and scores results.")
endif()
if(KELVORA_BUILD_PYTHON)
    find_package(Python REQUIRED COMPONENTS Interpreter)
    math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
    # An extension module works with one version of the interpreter only.
    kelvora_package(kelvora_python python3-kelvora python
        "${library} (>= ${debian_version}), ${recording_library} (>= ${debian_version}), python3-numpy, python3 (>= ${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}), python3 (<< ${Python_VERSION_MAJOR}.${next_minor})"
        "Python package"
        "This package contains the package for Python 3, which takes and returns\nNumPy arrays.")
    set(CPACK_DEBIAN_KELVORA_PYTHON_PACKAGE_SUGGESTS python3-distributed)
    file(WRITE "${debian_dir}/postinst" "#!/bin/sh\nset -e\n[ \"$1\" != configure ] || py3compile -p python3-kelvora\n")
    file(WRITE "${debian_dir}/prerm" "#!/bin/sh\nset -e\npy3clean -p python3-kelvora\n")
    set(CPACK_DEBIAN_KELVORA_PYTHON_PACKAGE_CONTROL_EXTRA "${debian_dir}/postinst;${debian_dir}/prerm")
endif()

include(CPack)
