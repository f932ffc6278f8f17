# Flags live on targets, never on the whole build, so that a project that embeds the library keeps
# its own.

add_library(orvml_io_warnings INTERFACE)
target_compile_options(orvml_io_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-qual
  -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion -Wformat=2 -Wundef
  $<$<BOOL:${ORVML_IO_WARNINGS_AS_ERRORS}>:-Werror>)

# Tests have names that sanitizers ask for; what is installed has none that are reserved.
add_library(orvml_io_own_names INTERFACE)
target_compile_options(orvml_io_own_names INTERFACE
  $<$<CXX_COMPILER_ID:Clang>:-Wreserved-identifier>)

# Sanitizers and coverage reach whatever is built with the target in this tree, never its package.
function(orvml_io_instrument target)
  set(flags)
  if(ORVML_IO_SANITIZERS)
    list(APPEND flags -fsanitize=${ORVML_IO_SANITIZERS})
    target_compile_options(${target} PRIVATE -fno-sanitize-recover=all -fno-omit-frame-pointer)
  endif()
  if(ORVML_IO_COVERAGE)
    list(APPEND flags --coverage)
    # Threads count at once, and lose counts or make them negative where that is not atomic.
    target_compile_options(${target} PRIVATE -O0 -fno-inline -fprofile-update=atomic)
  endif()
  foreach(flag IN LISTS flags)
    target_compile_options(${target} PUBLIC "$<BUILD_INTERFACE:${flag}>")
    target_link_options(${target} PUBLIC "$<BUILD_INTERFACE:${flag}>")
  endforeach()
endfunction()

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
  orvml_io_instrument(${target})
endfunction()

# The names and the symbols of the shared library. Hidden visibility alone still exports weak
# instances of the standard library's templates; the version script keeps them in.
function(orvml_io_library_settings target script)
  orvml_io_instrument(${target})
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION})
  if(BUILD_SHARED_LIBS)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${script}")
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${script}")
  endif()
endfunction()
