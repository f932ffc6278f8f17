#pragma once

namespace orvml_parallel_tests {

/// While it lives, counts what this rank allocates, and lets the n-th allocation, counted from 1,
/// fail; none for 0. Those of HDF5 and MPI are their own and are left alone. One may live at a
/// time.
class FailingAllocation {
 public:
  explicit FailingAllocation(int n = 0) noexcept;
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
  FailingAllocation(FailingAllocation&&) = delete;
  FailingAllocation& operator=(FailingAllocation&&) = delete;
  ~FailingAllocation();

  [[nodiscard]] int count() const noexcept;
};

}  // namespace orvml_parallel_tests
