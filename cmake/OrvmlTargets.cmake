# Flags live on targets, never on the whole build, so that a project that embeds the library keeps
# its own.

# HDF5 as a system dependency: its headers are not ours to warn about.
add_library(orvml_io_hdf5 INTERFACE)
target_include_directories(orvml_io_hdf5 SYSTEM INTERFACE ${HDF5_INCLUDE_DIRS})
target_link_libraries(orvml_io_hdf5 INTERFACE ${HDF5_C_HL_LIBRARIES} ${HDF5_C_LIBRARIES})

add_library(orvml_io_warnings INTERFACE)
target_compile_options(orvml_io_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual
  -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion -Wformat=2 -Wundef
  $<$<BOOL:${ORVML_IO_WARNINGS_AS_ERRORS}>:-Werror>)

# What every object of the project is compiled with, tests included.
function(orvml_io_compile_settings target)
  target_compile_features(${target} PUBLIC cxx_std_17)
  set_target_properties(${target} PROPERTIES
    CXX_EXTENSIONS OFF CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  if(NOT DEFINED CMAKE_CXX_STANDARD)
    # Stated even where it is the compiler's default: tools that read the compile commands have
    # other defaults.
    set_target_properties(${target} PROPERTIES CXX_STANDARD 17)
  endif()
  if(ORVML_IO_SANITIZERS)
    target_compile_options(${target} PUBLIC
      -fsanitize=${ORVML_IO_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=${ORVML_IO_SANITIZERS})
  endif()
  if(ORVML_IO_COVERAGE)
    target_compile_options(${target} PUBLIC --coverage -O0 -fno-inline)
    target_link_options(${target} PUBLIC --coverage)
  endif()
endfunction()

# The names and the symbols of the shared library. Hidden visibility alone still exports weak
# instances of the standard library's templates; the version script keeps them in.
function(orvml_io_library_settings target)
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION})
  if(BUILD_SHARED_LIBS)
    set(script "${PROJECT_SOURCE_DIR}/cmake/exported_symbols.map")
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${script}")
  endif()
endfunction()
