#pragma once

#include <functional>
#include <string>

namespace orvml_io_tests {

/// How a child process ended, and what it answered and printed.
struct EndedChild {
  int signal = 0;  ///< the signal that ended it; 0 when it ended by itself
  int status = 0;  ///< its exit status then
  std::string text;
};

/// Runs work in a child process that then ends as programs do, with destructors and exit functions:
/// HDF5 closes what it has open then. Its text is what the work returns, with whatever is printed.
EndedChild endedChild(const std::function<std::string()>& work);

}  // namespace orvml_io_tests
