# What the parallel library stands on: MPI with the HDF5 that is built on it, and PT-Scotch. The HDF5
# is asked for by the name of its MPI, because plain "hdf5" names whichever one the system prefers,
# and a process can hold one HDF5 only.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
pkg_check_modules(ORVML_PARALLEL_HDF5 REQUIRED IMPORTED_TARGET hdf5-openmpi)
pkg_check_modules(ORVML_PARALLEL_MPI REQUIRED IMPORTED_TARGET ompi-c)
find_path(ORVML_PTSCOTCH_INCLUDE_DIR ptscotch.h PATH_SUFFIXES scotch REQUIRED)
find_library(ORVML_PTSCOTCH_LIBRARY ptscotch REQUIRED)
find_library(ORVML_PTSCOTCH_ERRORS ptscotcherr REQUIRED)
find_library(ORVML_SCOTCH_LIBRARY scotch REQUIRED)
find_program(ORVML_MPIEXEC NAMES mpiexec.openmpi mpiexec REQUIRED)
mark_as_advanced(ORVML_PTSCOTCH_INCLUDE_DIR ORVML_PTSCOTCH_LIBRARY ORVML_PTSCOTCH_ERRORS
  ORVML_SCOTCH_LIBRARY ORVML_MPIEXEC)

# Headers of others are none of ours to warn about, and the C++ bindings that MPI once had stay out.
add_library(orvml_parallel_hdf5 INTERFACE)
target_include_directories(orvml_parallel_hdf5 SYSTEM INTERFACE
  "${ORVML_PARALLEL_HDF5_INCLUDE_DIRS}")
target_compile_definitions(orvml_parallel_hdf5 INTERFACE OMPI_SKIP_MPICXX)
target_link_libraries(orvml_parallel_hdf5 INTERFACE PkgConfig::ORVML_PARALLEL_HDF5)

# The sources of targets of this build, wherever those are listed, to be compiled once more.
function(orvml_parallel_sources_of result)
  set(all)
  foreach(target IN LISTS ARGN)
    get_target_property(names ${target} SOURCES)
    get_target_property(folder ${target} SOURCE_DIR)
    list(TRANSFORM names PREPEND "${folder}/")
    list(APPEND all ${names})
  endforeach()
  set(${result} ${all} PARENT_SCOPE)
endfunction()

# Objects of the parallel library: compiled against the HDF5 on MPI and nothing else of that name.
function(orvml_parallel_objects name)
  add_library(${name} OBJECT ${ARGN})
  orvml_io_compile_settings(${name})
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_STANDARD 20)
  target_include_directories(${name} PRIVATE
    "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/cpp/include"
    "${PROJECT_SOURCE_DIR}/cpp/src" "${PROJECT_SOURCE_DIR}/parallel/include"
    "${PROJECT_SOURCE_DIR}/parallel/src")
  target_include_directories(${name} SYSTEM PRIVATE
    "${ORVML_XXHASH_INCLUDE_DIR}" "${ORVML_PTSCOTCH_INCLUDE_DIR}")
  target_link_libraries(${name} PRIVATE orvml_parallel_hdf5 Threads::Threads orvml_io_warnings
    orvml_io_own_names)
endfunction()
