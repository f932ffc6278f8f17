#pragma once

#include "hdf5/silence.h"

#include <hdf5.h>

#include <string>

namespace orvml::detail {

/// Keeps HDF5 from printing errors for its lifetime, and remembers the innermost reason of the last
/// one: what a writer reports comes when HDF5 has forgotten why.
class FailureWatch {
 public:
  FailureWatch() noexcept;
  FailureWatch(const FailureWatch&) = delete;
  FailureWatch& operator=(const FailureWatch&) = delete;
  FailureWatch(FailureWatch&&) = delete;
  FailureWatch& operator=(FailureWatch&&) = delete;
  ~FailureWatch() = default;

  [[nodiscard]] const std::string& lastReason() const noexcept { return lastReason_; }
  void forget() noexcept { lastReason_.clear(); }

 private:
  static herr_t remember(hid_t stack, void* watch);

  orvml_io::Silence restoresTheCallersHandler_;
  std::string lastReason_;
};

}  // namespace orvml::detail
