# SPDX-License-Identifier: MIT
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/kelvora")

install(TARGETS kelvora
    EXPORT kelvoraTargets
    RUNTIME COMPONENT kelvora_runtime
    LIBRARY COMPONENT kelvora_runtime NAMELINK_COMPONENT kelvora_development
    FILE_SET HEADERS COMPONENT kelvora_development)
install(EXPORT kelvoraTargets
    NAMESPACE kelvora::
    DESTINATION "${package_dir}"
    COMPONENT kelvora_development)

configure_package_config_file(cmake/kelvoraConfig.cmake.in
    "${PROJECT_BINARY_DIR}/kelvoraConfig.cmake"
    INSTALL_DESTINATION "${package_dir}")
# Before 1.0 a minor version may change the interface.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/kelvoraConfigVersion.cmake"
    COMPATIBILITY SameMinorVersion)
install(FILES
        "${PROJECT_BINARY_DIR}/kelvoraConfig.cmake"
        "${PROJECT_BINARY_DIR}/kelvoraConfigVersion.cmake"
        "${PROJECT_SOURCE_DIR}/cmake/FindOpenCVModules.cmake"
    DESTINATION "${package_dir}"
    COMPONENT kelvora_development)

# The tool and the Python package need the library of recordings, too.
if(KELVORA_BUILD_RECORDING OR KELVORA_BUILD_TOOLS OR KELVORA_BUILD_PYTHON)
    install(TARGETS kelvora_recording_library
        EXPORT kelvoraRecordingTargets
        RUNTIME COMPONENT kelvora_recording_runtime
        LIBRARY COMPONENT kelvora_recording_runtime NAMELINK_COMPONENT kelvora_development
        FILE_SET HEADERS COMPONENT kelvora_development)
    install(EXPORT kelvoraRecordingTargets
        NAMESPACE kelvora::
        DESTINATION "${package_dir}"
        COMPONENT kelvora_development)
    configure_file(cmake/kelvora-recording.pc.in "${PROJECT_BINARY_DIR}/kelvora-recording.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/kelvora-recording.pc"
        DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT kelvora_development)
    # It finds the library beside it.
    if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
        set_target_properties(kelvora_recording_library PROPERTIES INSTALL_RPATH "$ORIGIN")
    endif()
endif()

# For programs that are not built with CMake. The file names OpenCV's directories itself: Debian ships OpenCV's .pc file
# only in libopencv-dev, and it links every module. They are system directories, as in CMake, because OpenCV's headers
# cause warnings in C++20.
file(RELATIVE_PATH KELVORA_INCLUDE_FROM_PC
    "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
set(KELVORA_OPENCV_CORE OpenCVModules::core)
if(TARGET opencv_core)
    set(KELVORA_OPENCV_CORE opencv_core)
endif()
configure_file(cmake/kelvora.pc.in "${PROJECT_BINARY_DIR}/kelvora.pc.in" @ONLY)
set(pc_file "${PROJECT_BINARY_DIR}/pkgconfig/$<CONFIG>/kelvora.pc")
file(GENERATE OUTPUT "${pc_file}" INPUT "${PROJECT_BINARY_DIR}/kelvora.pc.in")
install(FILES "${pc_file}"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
    COMPONENT kelvora_development)

if(KELVORA_BUILD_TOOLS)
    # The loader finds the library in system directories. Anywhere else, the tool stores the path.
    if(NOT CMAKE_INSTALL_FULL_LIBDIR IN_LIST CMAKE_CXX_IMPLICIT_LINK_DIRECTORIES)
        file(RELATIVE_PATH lib_from_bin "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
        set_target_properties(kelvora_tool PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
    endif()
    install(TARGETS kelvora_tool RUNTIME COMPONENT kelvora_tool)
endif()
