#pragma once

#include <H5public.h>

#include <string>

namespace orvml_io_tests {

/// The HDF5 functions that can be made to fail. They are replaced when the test program is linked,
/// so the library needs no change; each forwards to HDF5 unless a FailingCall is meant for it.
enum class Hdf5Function {
  closeFile,        ///< H5Fclose; the file is closed all the same
  createDataset,    ///< H5Dcreate2, by the end of the path
  writeDataset,     ///< H5Dwrite, by the end of the path
  createAttribute,  ///< H5Acreate2, by the name of the attribute
};

/// Makes calls of one HDF5 function fail while it lives. One may live at a time.
class FailingCall {
 public:
  /// `target` selects the calls by their name or path; an empty one selects all.
  explicit FailingCall(Hdf5Function function, std::string target = "", herr_t result = -1);
  FailingCall(const FailingCall&) = delete;
  FailingCall& operator=(const FailingCall&) = delete;
  FailingCall(FailingCall&&) = delete;
  FailingCall& operator=(FailingCall&&) = delete;
  ~FailingCall();

  /// How many calls failed so far. A test that expects a failure also expects that it came.
  [[nodiscard]] int hits() const noexcept;
};

}  // namespace orvml_io_tests
