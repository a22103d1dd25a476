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

if(KELVORA_BUILD_TOOLS)
    install(TARGETS kelvora_tool RUNTIME COMPONENT kelvora_tool)
endif()
