# Debian packages: `cpack -G DEB` in a build whose prefix is /usr (scripts/package makes one). Each
# install component is a package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME liborvml-io)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_CONTACT "liborvml_io authors <maintainers@liborvml-io.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_COMPONENTS_ALL runtime development)

set(about "Carries a mesh, its meshing parameters and named attributes between a
pre-processing application and a meshing module, in memory and in HDF5
exchange files of one fixed format.
")

# A program asks for the library by its SONAME, so each SONAME has a package of its own and two of
# them can be installed side by side.
set(runtime_package "liborvml-io${PROJECT_VERSION}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "${runtime_package}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION
"exchange of meshes and meshing parameters (library)
${about}
This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME liborvml-io-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "${runtime_package} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"exchange of meshes and meshing parameters (development files)
${about}
This package holds the header, the CMake package and the pkg-config file.")

# What Debian wants beside the files of a package: its terms and its history.
function(orvml_io_debian_documents component package)
  set(folder "${CMAKE_INSTALL_DATAROOTDIR}/doc/${package}")
  set(changelog "${PROJECT_BINARY_DIR}/debian/${package}.changelog")
  string(TIMESTAMP RELEASE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/debian/changelog.in" "${changelog}" @ONLY)
  execute_process(COMMAND gzip -9nc "${changelog}" OUTPUT_FILE "${changelog}.gz"
    COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${changelog}.gz" RENAME changelog.Debian.gz DESTINATION "${folder}"
    COMPONENT ${component})
  install(FILES "${PROJECT_SOURCE_DIR}/cmake/debian/copyright" DESTINATION "${folder}"
    COMPONENT ${component})
endfunction()

orvml_io_debian_documents(runtime "${runtime_package}")
orvml_io_debian_documents(development liborvml-io-dev)

# The loader's cache has to learn of a library, and other packages which package has its SONAME.
set(triggers "${PROJECT_BINARY_DIR}/debian/triggers")
file(WRITE "${triggers}" "activate-noawait ldconfig\n")
function(orvml_io_debian_library component library soversion package)
  set(shlibs "${PROJECT_BINARY_DIR}/debian/${component}/shlibs")
  file(WRITE "${shlibs}" "${library} ${soversion} ${package} (>= ${PROJECT_VERSION})\n")
  string(TOUPPER ${component} component)
  set(CPACK_DEBIAN_${component}_PACKAGE_CONTROL_EXTRA "${triggers};${shlibs}" PARENT_SCOPE)
endfunction()

orvml_io_debian_library(runtime liborvml_io ${PROJECT_VERSION} "${runtime_package}")

if(ORVML_CPP)
  list(APPEND CPACK_COMPONENTS_ALL cpp_runtime cpp_development)
  set(release "${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}")
  set(cpp_runtime_package "liborvml${ORVML_SOVERSION}")

  # Both libraries are made of the same classes: only two of one version work together.
  set(CPACK_DEBIAN_CPP_RUNTIME_PACKAGE_NAME "${cpp_runtime_package}")
  set(CPACK_DEBIAN_CPP_RUNTIME_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_CPP_RUNTIME_PACKAGE_DEPENDS "${runtime_package} (= ${release})")
  set(CPACK_DEBIAN_CPP_RUNTIME_PACKAGE_SHLIBDEPS ON)
  # The flat library is no installed package when the dependencies are looked for.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
  set(CPACK_DEBIAN_CPP_RUNTIME_DESCRIPTION
"exchange of meshes and meshing parameters (C++20 library)
${about}
This package holds the shared library of the C++ interface.")

  set(CPACK_DEBIAN_CPP_DEVELOPMENT_PACKAGE_NAME liborvml-dev)
  set(CPACK_DEBIAN_CPP_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_CPP_DEVELOPMENT_PACKAGE_DEPENDS
    "${cpp_runtime_package} (= ${release}), liborvml-io-dev (= ${release})")
  set(CPACK_DEBIAN_CPP_DEVELOPMENT_DESCRIPTION
"exchange of meshes and meshing parameters (C++20 development files)
${about}
This package holds the headers of the C++ interface, its CMake package and
its pkg-config file.")

  orvml_io_debian_documents(cpp_runtime "${cpp_runtime_package}")
  orvml_io_debian_documents(cpp_development liborvml-dev)
  orvml_io_debian_library(cpp_runtime liborvml ${ORVML_SOVERSION} "${cpp_runtime_package}")
endif()

if(TARGET orvml_parallel)
  list(APPEND CPACK_COMPONENTS_ALL parallel_runtime parallel_development)
  set(parallel_runtime_package "liborvml-parallel${ORVML_SOVERSION}")
  # It holds all of the other libraries, on another HDF5, and needs none of them.
  set(CPACK_DEBIAN_PARALLEL_RUNTIME_PACKAGE_NAME "${parallel_runtime_package}")
  set(CPACK_DEBIAN_PARALLEL_RUNTIME_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_PARALLEL_RUNTIME_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PARALLEL_RUNTIME_DESCRIPTION
"exchange of meshes and meshing parameters (MPI library)
${about}
This package holds the shared library for programs of many ranks.")

  # Its headers stand beside those of the C++ interface, which they use.
  set(CPACK_DEBIAN_PARALLEL_DEVELOPMENT_PACKAGE_NAME liborvml-parallel-dev)
  set(CPACK_DEBIAN_PARALLEL_DEVELOPMENT_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_PARALLEL_DEVELOPMENT_PACKAGE_DEPENDS
    "${parallel_runtime_package} (= ${release}), liborvml-dev (= ${release}), libopenmpi-dev")
  set(CPACK_DEBIAN_PARALLEL_DEVELOPMENT_DESCRIPTION
"exchange of meshes and meshing parameters (MPI development files)
${about}
This package holds the headers for programs of many ranks, the CMake package
and the pkg-config file.")

  orvml_io_debian_documents(parallel_runtime "${parallel_runtime_package}")
  orvml_io_debian_documents(parallel_development liborvml-parallel-dev)
  orvml_io_debian_library(parallel_runtime liborvml_parallel ${ORVML_SOVERSION}
    "${parallel_runtime_package}")
endif()

if(ORVML_CPP AND ORVML_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME orvml)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${cpp_runtime_package} (= ${release})")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/cpp")
  set(CPACK_DEBIAN_TOOLS_DESCRIPTION
"exchange of meshes and meshing parameters (command)
${about}
This package holds the command orvml, which looks at such files, checks,
compares, mends and makes them.")
  orvml_io_debian_documents(tools orvml)

  # Debian wants its manual pages packed.
  set(manual "${PROJECT_BINARY_DIR}/debian/orvml.1.gz")
  execute_process(COMMAND gzip -9nc "${PROJECT_SOURCE_DIR}/tools/orvml/orvml.1"
    OUTPUT_FILE "${manual}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${manual}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
endif()

if(ORVML_CPP AND ORVML_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-orvml)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  # The module is made for the one release of Python that Debian has.
  math(EXPR next_python "${Python3_VERSION_MINOR} + 1")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${cpp_runtime_package} (= ${release}), \
python3 (>= 3.${Python3_VERSION_MINOR}~), python3 (<< 3.${next_python}~), python3-numpy")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS
    "python3-meshio, python3-vtk9, xvfb, python3-matplotlib, python3-pandas")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/cpp")
  set(CPACK_DEBIAN_PYTHON_DESCRIPTION
"exchange of meshes and meshing parameters (Python 3)
${about}
This package holds the Python package orvml and the command orvml-meshio.")
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    "${PROJECT_SOURCE_DIR}/cmake/debian/python/postinst;${PROJECT_SOURCE_DIR}/cmake/debian/python/prerm")
  orvml_io_debian_documents(python python3-orvml)
  set(manual "${PROJECT_BINARY_DIR}/debian/orvml-meshio.1.gz")
  execute_process(COMMAND gzip -9nc "${PROJECT_SOURCE_DIR}/python/orvml-meshio.1"
    OUTPUT_FILE "${manual}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${manual}" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT python)
endif()

if(ORVML_IO_DOCUMENTATION)
  list(APPEND CPACK_COMPONENTS_ALL documentation)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME liborvml-io-doc)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
  set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
  set(CPACK_DEBIAN_DOCUMENTATION_DESCRIPTION
"exchange of meshes and meshing parameters (documentation)
${about}
This package holds the guides and the reference as static pages.")
  orvml_io_debian_documents(documentation liborvml-io-doc)
  install(DIRECTORY "${ORVML_IO_DOCUMENTATION}/"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/liborvml-io-doc/html" COMPONENT documentation)
endif()

include(CPack)
