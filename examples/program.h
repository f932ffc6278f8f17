#pragma once

#include "exchange/check.h"

#include <stdlib.h>  // setenv is no function of <cstdlib>. NOLINT(modernize-deprecated-headers)

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

namespace orvml_examples {

/// Keeps HDF5 from looking for filter plugins. A file may name any filter, and HDF5 would load a
/// library of that number from its plugin folders; whether it may is for the application to say, as
/// the setting holds for the whole process. It has to be made before the first call that needs
/// HDF5.
inline void refuseFilterPlugins() { (void)::setenv("HDF5_PLUGIN_PRELOAD", "::", 1); }

/// Runs the body of a program: its exit status is 0, 1 with a message when something failed, or 2
/// when the body answers false because it does not know the arguments.
template <class Body>
int runProgram(int argc, char** argv, const char* usage, Body body) {
  refuseFilterPlugins();
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  std::string failure;
  try {
    if (body(arguments)) {
      return 0;
    }
    (void)std::fprintf(stderr, "usage: %s\n", usage);
    return 2;
  } catch (const CheckFailed& failed) {
    failure = std::string("check failed: ") + failed.what();
  } catch (const std::exception& failed) {
    failure = failed.what();
  } catch (const std::string& gmshMessage) {
    failure = "Gmsh: " + gmshMessage;
  }
  (void)std::fflush(stdout);  // so that the failure is the last thing seen
  (void)std::fprintf(stderr, "%s: %s\n", argv[0], failure.c_str());
  return 1;
}

}  // namespace orvml_examples
