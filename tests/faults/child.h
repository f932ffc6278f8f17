#pragma once

#include <functional>
#include <string>

namespace orvml_io_tests {

/// How a child process ended, and everything that it answered and printed.
struct ChildEnd {
  int signal = 0;  ///< the signal that ended it; 0 when it ended by itself
  std::string text;
};

/// Runs work in a child process. Its text is what the work returns, after whatever was printed: a
/// library that prints nothing leaves the answer alone. The child ends without destructors and exit
/// functions: HDF5 1.10 may fall when it flushes at exit what could not be written before.
ChildEnd runInChild(const std::function<std::string()>& work);

}  // namespace orvml_io_tests
