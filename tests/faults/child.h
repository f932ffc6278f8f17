#pragma once

#include <functional>
#include <string>

namespace orvml_io_tests {

/// How a child process ended, and everything that it answered and printed.
struct ChildEnd {
  int signal = 0;  ///< the signal that ended it; 0 when it ended by itself
  int status = 0;  ///< its exit status then; another than 0 stands in the text, too
  std::string text;
};

/// How a child process ends when its work is done.
enum class Ending {
  /// Without exit functions: HDF5 1.10 may fall when it flushes at exit what could not be written
  /// before.
  atOnce,
  /// As programs do: HDF5 closes what it has open then.
  withExitFunctions
};

/// Runs work in a child process. Its text is what the work returns, after whatever was printed: a
/// library that prints nothing leaves the answer alone.
ChildEnd runInChild(const std::function<std::string()>& work, Ending ending = Ending::atOnce);

}  // namespace orvml_io_tests
