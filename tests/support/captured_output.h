#pragma once

#include <cstdio>
#include <string>

namespace orvml_io_tests {

/// Catches what the process writes to stdout and stderr, at the level of file descriptors, so that
/// output of the C library and of HDF5 is seen too.
class CapturedOutput {
 public:
  CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;
  CapturedOutput(CapturedOutput&&) = delete;
  CapturedOutput& operator=(CapturedOutput&&) = delete;
  ~CapturedOutput();

  /// Ends the capture and returns what was written.
  std::string stop();

 private:
  std::FILE* sink_ = nullptr;
  int savedOut_ = -1;
  int savedErr_ = -1;
};

}  // namespace orvml_io_tests
