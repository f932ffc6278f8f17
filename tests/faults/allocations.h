#pragma once

#include "faults/failing.h"

namespace orvml_io_tests {

/// Counts the allocations of this program while it lives, and lets the n-th, counted from 1, fail,
/// or that one and all later ones; none for 0. HDF5's allocations are its own and are left alone.
/// One may live at a time.
class FailingAllocations {
 public:
  explicit FailingAllocations(int n = 0, Failing failing = Failing::once) noexcept;
  FailingAllocations(const FailingAllocations&) = delete;
  FailingAllocations& operator=(const FailingAllocations&) = delete;
  FailingAllocations(FailingAllocations&&) = delete;
  FailingAllocations& operator=(FailingAllocations&&) = delete;
  ~FailingAllocations();

  [[nodiscard]] bool happened() const noexcept;
};

/// How many blocks this program has allocated and not released.
long liveBlocks() noexcept;

}  // namespace orvml_io_tests
