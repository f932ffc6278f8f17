#pragma once

#include "faults/failing.h"

#include <string>

namespace orvml_io_tests {

/// Counts the HDF5 calls of the library while it lives, and makes one fail: the n-th, counted from
/// 1, or that one and all later ones; none for 0. A call that fails does nothing. Calls that HDF5
/// makes of its own functions are neither counted nor failed. One may live at a time.
class FailingHdf5Call {
 public:
  explicit FailingHdf5Call(int n = 0, Failing failing = Failing::once) noexcept;
  FailingHdf5Call(const FailingHdf5Call&) = delete;
  FailingHdf5Call& operator=(const FailingHdf5Call&) = delete;
  FailingHdf5Call(FailingHdf5Call&&) = delete;
  FailingHdf5Call& operator=(FailingHdf5Call&&) = delete;
  ~FailingHdf5Call();

  /// The number of calls so far.
  [[nodiscard]] int calls() const noexcept;
  /// The function whose call failed first; empty when none did.
  [[nodiscard]] std::string function() const;
};

}  // namespace orvml_io_tests
