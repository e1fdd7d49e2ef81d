# What a user finds after the install: two libraries, the public headers below include/orvxml, a CMake package and a
# pkg-config file for each library. Both ways find the files relative to themselves, so the tree can be moved.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/OrvXml")

install(TARGETS orvsys orvxml
    EXPORT OrvXmlTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/orvxml")
install(EXPORT OrvXmlTargets NAMESPACE OrvXml:: DESTINATION "${package_dir}")

configure_package_config_file(cmake/OrvXmlConfig.cmake.in "${PROJECT_BINARY_DIR}/OrvXmlConfig.cmake"
    INSTALL_DESTINATION "${package_dir}")
# Before 1.0 a new minor version may break its users.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvXmlConfigVersion.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/OrvXmlConfig.cmake" "${PROJECT_BINARY_DIR}/OrvXmlConfigVersion.cmake"
    DESTINATION "${package_dir}")

# The pkg-config files lie some folders below the prefix; how many depends on the library folder.
file(RELATIVE_PATH pkgconfig_prefix "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" pkgconfig_prefix "${pkgconfig_prefix}")
cmake_path(APPEND pkgconfig_libdir "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND pkgconfig_includedir "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
foreach(package IN ITEMS orvsys orvxml)
    configure_file(cmake/${package}.pc.in "${PROJECT_BINARY_DIR}/${package}.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/${package}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endforeach()
