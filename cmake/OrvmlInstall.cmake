# The installed tree: library, header, CMake package and pkg-config file. Nothing in it holds the
# path of the build or of the prefix, so that it can be moved.
include(CMakePackageConfigHelpers)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/orvml_io")
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

set_target_properties(orvml_io PROPERTIES EXPORT_NAME io)
install(TARGETS orvml_io EXPORT orvml_io_targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
install(FILES "${PROJECT_SOURCE_DIR}/include/orvml_io.h"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)

install(EXPORT orvml_io_targets NAMESPACE orvml:: FILE orvml_io-targets.cmake
  DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/orvml_io-config.cmake.in"
  "${PROJECT_BINARY_DIR}/orvml_io-config.cmake" INSTALL_DESTINATION "${package_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/orvml_io-config-version.cmake"
  COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/orvml_io-config.cmake"
  "${PROJECT_BINARY_DIR}/orvml_io-config-version.cmake"
  DESTINATION "${package_dir}" COMPONENT development)

# pkg-config finds the prefix from the place of its own file.
file(RELATIVE_PATH pkgconfig_to_prefix "/${pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
string(JOIN " " private_libraries ${HDF5_C_LIBRARIES})
configure_file("${PROJECT_SOURCE_DIR}/cmake/orvml_io.pc.in" "${PROJECT_BINARY_DIR}/orvml_io.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/orvml_io.pc"
  DESTINATION "${pkgconfig_dir}" COMPONENT development)

if(ORVML_IO_PACKAGE)
  include(OrvmlPackage)
endif()
