# The installed tree: libraries, headers, CMake packages and pkg-config files. Nothing in it holds the
# path of the build or of the prefix, so that it can be moved.
include(CMakePackageConfigHelpers)

set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
# pkg-config finds the prefix from the place of its own file.
file(RELATIVE_PATH pkgconfig_to_prefix "/${pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix "${pkgconfig_to_prefix}")
string(JOIN " " private_libraries ${HDF5_C_LIBRARIES})

# Installs a library and what CMake and pkg-config find it by, in two components: what programs need
# to run, and what they need to be built.
function(orvml_io_install_library name runtime development)
  set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/${name}")
  install(TARGETS ${name} EXPORT ${name}_targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
      COMPONENT ${runtime} NAMELINK_COMPONENT ${development}
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${development})
  install(EXPORT ${name}_targets NAMESPACE orvml:: FILE ${name}-targets.cmake
    DESTINATION "${package_dir}" COMPONENT ${development})
  configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/${name}-config.cmake.in"
    "${PROJECT_BINARY_DIR}/${name}-config.cmake" INSTALL_DESTINATION "${package_dir}")
  write_basic_package_version_file("${PROJECT_BINARY_DIR}/${name}-config-version.cmake"
    COMPATIBILITY SameMajorVersion)
  install(FILES "${PROJECT_BINARY_DIR}/${name}-config.cmake"
    "${PROJECT_BINARY_DIR}/${name}-config-version.cmake"
    DESTINATION "${package_dir}" COMPONENT ${development})
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${name}.pc"
    DESTINATION "${pkgconfig_dir}" COMPONENT ${development})
endfunction()

set_target_properties(orvml_io PROPERTIES EXPORT_NAME io)
orvml_io_install_library(orvml_io runtime development)
install(FILES "${PROJECT_SOURCE_DIR}/include/orvml_io.h"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)

if(ORVML_CPP)
  orvml_io_install_library(orvml cpp_runtime cpp_development)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/cpp/include/orvml"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT cpp_development FILES_MATCHING PATTERN "*.hpp")
  # It finds the flat library beside itself, wherever the two are moved. Packages install both where
  # the loader looks anyway.
  if(NOT ORVML_IO_PACKAGE)
    set_target_properties(orvml PROPERTIES INSTALL_RPATH "$ORIGIN")
  endif()
endif()

if(TARGET orvml_parallel)
  orvml_io_install_library(orvml_parallel parallel_runtime parallel_development)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/parallel/include/orvml/parallel"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/orvml" COMPONENT parallel_development
    FILES_MATCHING PATTERN "*.hpp")
endif()

if(ORVML_IO_PACKAGE)
  include(OrvmlPackage)
endif()
