#pragma once

#include <functional>
#include <ostream>
#include <string>

namespace orvml_io_tests {

enum class Ending {
  succeeded,   ///< no test failure, no output, no leak but of HDF5's own memory
  fellInHdf5,  ///< a fault, found by the processor or a sanitizer, in the code of HDF5
  failed       ///< anything else
};

std::ostream& operator<<(std::ostream& stream, Ending ending);

/// How a piece of work ended that had a process of its own, and what that process printed.
struct IsolatedRun {
  Ending ending = Ending::failed;
  std::string output;
};

/// Runs work in a child process. HDF5 1.10 does not stand every damage of a file's own structures:
/// it may read outside its memory, lose memory, or refuse to close the file for good. None of that
/// is the library's, and none of it may reach the tests that follow.
IsolatedRun runIsolated(const std::function<void()>& work);

/// Tells whether the reports of faults and leaks in a text all lie in HDF5: the innermost function
/// of each printed stack that does not belong to the platform or to a sanitizer is HDF5's. A text
/// without a stack tells nothing, and is no.
bool everyStackEndsInHdf5(const std::string& report);

}  // namespace orvml_io_tests
